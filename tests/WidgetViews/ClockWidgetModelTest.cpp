#include "ClockWidgetModel.h"
#include "SettingsManager.h"

#include <gtest/gtest.h>

TEST(ClockWidgetModel, AnglesAndItalianTextsOfAMoment)
{
    const struct {
        QDateTime at;
        double hour, minute, second;
        const char *clock, *seconds, *shortDate, *fullDate, *weekday;
    } cases[] = {
        {{{2026, 11, 23}, {15, 30, 7}}, 105.0, 180.7, 42.0, "15:30", "7 s", "LUN 23", "LUNEDÌ, 23 NOV", "Lunedì"},
        {{{2026, 3, 1}, {0, 0, 0}}, 0.0, 0.0, 0.0, "00:00", "0 s", "DOM 1", "DOMENICA, 1 MAR", "Domenica"},
        {{{2026, 3, 1}, {12, 0, 0}}, 0.0, 0.0, 0.0, "12:00", "0 s", "DOM 1", "DOMENICA, 1 MAR", "Domenica"},
        {{{2026, 11, 23}, {23, 59, 42}}, 359.5, 358.2, 252.0, "23:59", "42 s", "LUN 23", "LUNEDÌ, 23 NOV", "Lunedì"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.at.toString().toStdString());
        EXPECT_DOUBLE_EQ(ClockWidgetModel::hourAngle(c.at), c.hour);
        EXPECT_NEAR(ClockWidgetModel::minuteAngle(c.at), c.minute, 1e-9);
        EXPECT_DOUBLE_EQ(ClockWidgetModel::secondAngle(c.at), c.second);
        EXPECT_EQ(ClockWidgetModel::timeString(c.at), c.clock);
        EXPECT_EQ(ClockWidgetModel::secondsString(c.at), c.seconds);
        EXPECT_EQ(ClockWidgetModel::shortDateString(c.at), QString::fromUtf8(c.shortDate));
        EXPECT_EQ(ClockWidgetModel::fullDateString(c.at), QString::fromUtf8(c.fullDate));
        EXPECT_EQ(ClockWidgetModel::weekdayName(c.at), QString::fromUtf8(c.weekday));
        EXPECT_EQ(ClockWidgetModel::dayNumString(c.at), QString::number(c.at.date().day()));
    }
}

// The city comes from the manual choice, else from the weather widget's block, else "MILANO"; a
// label on screen changes only with a new city text, never with a new weather block alone.
TEST(ClockWidgetModel, CityLabel)
{
    const WeatherData torino{"Torino", {}, {}, {}};
    const struct {
        WeatherSettings settings;
        std::optional<WeatherData> weather;
        QString onScreen, afterNewText;
    } cases[] = {
        {{true, " Roma, Italia", {}, {}}, {}, " ROMA", "NAPOLI"},
        {{true, "", {}, {}}, {}, "", "NAPOLI"},
        {{true, "New York, USA", {}, {}}, torino, "NEW YORK", "NAPOLI"},
        {{false, "Roma, Italia", {}, {}}, {}, "MILANO", "BARI"},
        {{false, "", {}, {}}, WeatherData{{}, 3.0, 1, {}}, "MILANO", "BARI"},
        {{false, "", {}, {}}, torino, "TORINO", "BARI"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.settings.city.toStdString());
        auto& s = SettingsManager::shared();
        s.setWeatherSettings(c.settings);
        SharedWidgetData shared;
        shared.weather = c.weather;
        s.setSharedData(shared);
        ClockWidgetModel model;
        model.setActive(true); // coming on screen looks the label up once
        EXPECT_EQ(model.city(), c.onScreen);
        shared.weather = WeatherData{"Bari", {}, {}, {}};
        s.setSharedData(shared);
        s.setWeatherSettings({c.settings.useManual, c.settings.city, {}, {}});
        EXPECT_EQ(model.city(), c.onScreen);
        s.setWeatherSettings({c.settings.useManual, "Napoli, Italia", {}, {}});
        EXPECT_EQ(model.city(), c.afterNewText);
    }
}

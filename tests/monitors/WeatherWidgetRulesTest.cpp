#include "WeatherWidgetModel.h"

#include <gtest/gtest.h>
#include <limits>

namespace {

const QString sun = QString::fromUtf8("\u2600\uFE0F");
const QString partly = QString::fromUtf8("\u26C5");
const QString cloud = QString::fromUtf8("\u2601\uFE0F");
const QString fog = QString::fromUtf8("\U0001F32B\uFE0F");
const QString rain = QString::fromUtf8("\U0001F327\uFE0F");
const QString snow = QString::fromUtf8("\u2744\uFE0F");
const QString showers = QString::fromUtf8("\U0001F326\uFE0F");
const QString storm = QString::fromUtf8("\u26C8\uFE0F");
const QString thermometer = QString::fromUtf8("\U0001F321\uFE0F");
const QString dash = QString::fromUtf8("\u2014");

WeatherResponse::DailyForecast week()
{
    return {{"2024-06-03", "2024-06-04", "2024-06-05", "2024-06-06", "2024-06-07"},
            {2, 61, 3, 0, 95},
            {24.4, 19.8, 22, 26.5, 27.9},
            {15.2, 14.1, 13.6, -0.4, 17.4}};
}

} // namespace

TEST(WeatherWidgetRules, WmoCodesGiveEmojiAndDescription)
{
    struct Case {
        qint64 code;
        QString emoji;
        const char* desc;
    };
    const Case cases[] = {
        {0, sun, "Sereno"},
        {1, partly, "Parz. nuvoloso"},
        {-1, partly, "Parz. nuvoloso"},
        {3, cloud, "Nuvoloso"},
        {4, fog, "Nebbia"},
        {49, fog, "Nebbia"},
        {50, rain, "Pioggerella"},
        {57, rain, "Pioggerella"},
        {58, rain, "Pioggia"},
        {67, rain, "Pioggia"},
        {68, snow, "Neve"},
        {77, snow, "Neve"},
        {78, showers, "Rovesci"},
        {82, showers, "Rovesci"},
        {83, storm, "Temporale"},
        {100, thermometer, "Sconosciuto"},
        {std::numeric_limits<qint64>::max(), thermometer, "Sconosciuto"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(WeatherWidgetModel::wmoEmoji(c.code), c.emoji) << c.code;
        EXPECT_EQ(WeatherWidgetModel::wmoDesc(c.code), c.desc) << c.code;
    }
}

TEST(WeatherWidgetRules, GlowFollowsTheCoarserTable)
{
    struct Case {
        qint64 code;
        int r, g, b;
        double opacity;
    };
    const Case cases[] = {
        {0, 255, 200, 50, 1.0},   {1, 255, 200, 50, 0.6},   {2, 255, 200, 50, 0.6},   {-5, 255, 200, 50, 0.6},
        {3, 150, 180, 220, 0.6},  {49, 150, 180, 220, 0.6}, {50, 80, 140, 255, 1.0},  {77, 80, 140, 255, 1.0},
        {78, 100, 200, 255, 1.0}, {79, 100, 200, 255, 1.0}, {99, 100, 200, 255, 1.0}, {100, 100, 200, 255, 1.0},
    };
    for (const auto& c : cases) {
        const QColor color = WeatherWidgetModel::glowColorFor(c.code);
        EXPECT_EQ(color.red(), c.r) << c.code;
        EXPECT_EQ(color.green(), c.g) << c.code;
        EXPECT_EQ(color.blue(), c.b) << c.code;
        EXPECT_NEAR(color.alphaF(), c.opacity, 0.002) << c.code;
    }
}

TEST(WeatherWidgetRules, TemperaturesAreWholeDegrees)
{
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> cases[] = {
        {21.5, "22°"}, {-3.5, "-4°"},  {-0.4, "0°"},         {-0.5, "-1°"},
        {0.5, "1°"},   {24.49, "24°"}, {-0.0, "0°"},         {1e18, "1000000000000000000°"},
        {inf, "—°"},   {-inf, "—°"},   {std::nan(""), "—°"}, {1e19, "—°"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(WeatherWidgetModel::formatTemperature(value), QString::fromUtf8(text)) << value;
}

TEST(WeatherWidgetRules, ShortDayNamesAreItalian)
{
    const std::pair<const char*, const char*> cases[] = {
        {"2024-06-03", "Lun"}, {"2024-06-04", "Mar"}, {"2024-06-05", "Mer"},
        {"2024-06-06", "Gio"}, {"2024-06-07", "Ven"}, {"2024-06-08", "Sab"},
        {"2024-06-09", "Dom"}, {"2024-02-29", "Gio"}, {"", "—"},
        {"2024-02-30", "—"},   {"03/06/2024", "—"},   {"2024-06-03T10:00", "—"},
        {"domani", "—"},
    };
    for (const auto& [date, name] : cases)
        EXPECT_EQ(WeatherWidgetModel::shortDayName(date), QString::fromUtf8(name)) << date;
}

TEST(WeatherWidgetRules, HighLowLineNeedsTodaysMaxAndMin)
{
    EXPECT_EQ(WeatherWidgetModel::highLowLine(week()), QString::fromUtf8("H:24° L:15°"));
    auto noMax = week();
    noMax.temperature_2m_max.clear();
    EXPECT_EQ(WeatherWidgetModel::highLowLine(noMax), "");
    auto noMin = week();
    noMin.temperature_2m_min.clear();
    EXPECT_EQ(WeatherWidgetModel::highLowLine(noMin), "");
    auto onlyTemperatures = week();
    onlyTemperatures.time.clear();
    onlyTemperatures.weathercode.clear();
    EXPECT_EQ(WeatherWidgetModel::highLowLine(onlyTemperatures), QString::fromUtf8("H:24° L:15°"));
}

TEST(WeatherWidgetRules, ForecastRowsForDaysOneToFourThatAllArraysHave)
{
    using Row = WeatherWidgetModel::ForecastRow;
    const auto rows = WeatherWidgetModel::forecastRowsFor(week());
    EXPECT_EQ(rows, (QList<Row>{{"Mar", rain, "20°", "14°"},
                                {"Mer", cloud, "22°", "14°"},
                                {"Gio", sun, "27°", "0°"},
                                {"Ven", storm, "28°", "17°"}}));

    struct Case {
        const char* what;
        std::function<void(WeatherResponse::DailyForecast&)> change;
        qsizetype rows;
    };
    const Case cases[] = {
        {"six days",
         [](auto& d) {
             d.time.append("2024-06-08");
             d.weathercode.append(1);
             d.temperature_2m_max.append(1);
             d.temperature_2m_min.append(1);
         },
         4},
        {"time short", [](auto& d) { d.time.resize(3); }, 2},
        {"codes short", [](auto& d) { d.weathercode.resize(2); }, 1},
        {"max short", [](auto& d) { d.temperature_2m_max.resize(4); }, 3},
        {"min only today", [](auto& d) { d.temperature_2m_min.resize(1); }, 0},
        {"no days", [](auto& d) { d = {}; }, 0},
    };
    for (const auto& c : cases) {
        auto daily = week();
        c.change(daily);
        EXPECT_EQ(WeatherWidgetModel::forecastRowsFor(daily).size(), c.rows) << c.what;
    }

    auto unreadable = week();
    unreadable.time[2] = "2024-13-01";
    EXPECT_EQ(WeatherWidgetModel::forecastRowsFor(unreadable)[1].dayName, dash);
}

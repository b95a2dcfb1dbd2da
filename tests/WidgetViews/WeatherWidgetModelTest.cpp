#include "WeatherWidgetModel.h"
#include "ReplayServer.h"
#include "WeatherFixtures.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <gtest/gtest.h>

namespace {

// What the model shows, and the weather it shares in the data file, as one line.
std::string shown(const WeatherWidgetModel& m)
{
    QFile f(SettingsManager::sharedDataFilePath());
    const auto file = f.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(f.readAll()).object() : QJsonObject();
    QStringList rows, all;
    for (const auto& row : m.forecastRows())
        rows << QVariant(row.toMap().values()).toStringList().join(' ');
    all << (m.loading() ? "loading" : "") << (m.connectionError() ? "error" : "") << m.cityName() << m.temperatureText()
        << m.weatherEmoji() << m.weatherDescription() << m.highLowText() << m.glowColor().name(QColor::HexArgb)
        << rows.join(", ") << QJsonDocument(file.value("weather").toObject()).toJson(QJsonDocument::Compact);
    return all.join('|').toStdString();
}

} // namespace

TEST(WeatherWidgetRules, CodesTemperaturesDaysAndRows)
{
    using M = WeatherWidgetModel;
    // Both sides of every bound of the code chain.
    QStringList codes;
    for (qint64 code : {-1, 0, 2, 3, 4, 49, 50, 57, 58, 67, 68, 77, 78, 82, 83, 99, 100})
        codes << QString::number(code) + ' ' + M::wmoEmoji(code) + ' ' + M::wmoDesc(code) + ' ' +
                     M::glowColorFor(code).name(QColor::HexArgb);
    EXPECT_EQ(codes.join("; ").toStdString(),
              "-1 ⛅ Parz. nuvoloso #99ffc832; 0 ☀️ Sereno #ffffc832; 2 ⛅ Parz. nuvoloso #99ffc832; "
              "3 ☁️ Nuvoloso #9996b4dc; 4 🌫️ Nebbia #9996b4dc; 49 🌫️ Nebbia #9996b4dc; "
              "50 🌧️ Pioggerella #ff508cff; 57 🌧️ Pioggerella #ff508cff; "
              "58 🌧️ Pioggia #ff508cff; 67 🌧️ Pioggia #ff508cff; 68 ❄️ Neve #ff508cff; "
              "77 ❄️ Neve #ff508cff; 78 🌦️ Rovesci #ff64c8ff; 82 🌦️ Rovesci #ff64c8ff; "
              "83 ⛈️ Temporale #ff64c8ff; 99 ⛈️ Temporale #ff64c8ff; 100 🌡️ Sconosciuto #ff64c8ff");
    QStringList degrees;
    for (double value : {21.5, -3.5, -0.4, -0.5, 24.49, -0.0, 1e18, HUGE_VAL, -HUGE_VAL, std::nan(""), 1e19})
        degrees << M::formatTemperature(value);
    EXPECT_EQ(degrees.join(' ').toStdString(), "22° -4° 0° -1° 24° 0° 1000000000000000000° —° —° —° —°");

    // Today's high and low; rows for days 1 to 4, as far as every array reaches, named in Italian.
    auto daily = WeatherResponse::DailyForecast{
        {"2024-02-28", "2024-02-29", "2024-06-08", "2024-06-09", "2024-06-10", "2024-06-11"},
        {2, 61, 3, 0, 95, 1},
        {24.4, 19.8, 22, 26.5, 27.9, 1},
        {15.2, 14.1, 13.6, -0.4, 17.4, 1}};
    const auto line = [](const WeatherResponse::DailyForecast& d) {
        QString text = M::highLowLine(d);
        for (const auto& row : M::forecastRowsFor(d))
            text += " " + row.dayName;
        return text.toStdString();
    };
    EXPECT_EQ(line(daily), "H:24° L:15° Gio Sab Dom Lun");
    daily.time = {"", "2024-02-30", "03/06/2024", "2024-06-03T10:00"};
    EXPECT_EQ(line(daily), "H:24° L:15° — — —");
    daily.temperature_2m_max.resize(2);
    EXPECT_EQ(line(daily), "H:24° L:15° —");
    daily.temperature_2m_min.clear();
    EXPECT_EQ(line(daily), "");
}

TEST(WeatherWidgetModel, LoadsTheirStatesAndTheDataFile)
{
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    auto& settings = SettingsManager::shared();
    settings.saveWeatherSettings({});
    QFile::remove(SettingsManager::sharedDataFilePath());
    auto model = std::make_unique<WeatherWidgetModel>();
    int started = 0, ended = 0;
    QObject::connect(model.get(), &WeatherWidgetModel::loadingChanged, [&] { ++(model->loading() ? started : ended); });
    const auto allEnded = [&] { return QTest::qWaitFor([&] { return ended == started; }, 20000); };
    EXPECT_EQ(shown(*model), "loading||MILANO|||||#00000000||{}");
    const std::string milan =
        "|Milan|22°|⛅|Parz. nuvoloso|H:24° L:15°|#99ffc832|Mar 🌧️ 20° 14°, Mer ☁️ 22° 14°, "
        "Gio ☀️ 27° 0°, Ven ⛈️ 28° 17°|"
        R"({"apparent":20.8,"city":"Milan","code":2,"temp":21.5})";
    // Each load with its replies and what it shows: a failure keeps what was shown, and the file.
    const std::tuple<QByteArray, QByteArray, int, std::string> loads[] = {
        {"<html>", samples::forecastMilan, 200, "|error|MILANO|||||#00000000||{}"},
        {samples::ipMilan, samples::forecastMilan, 200, "|" + milan},
        {samples::ipMilan, samples::openMeteoError, 500, "|error" + milan},
        {samples::ipMilan, samples::forecastNoDaily, 200,
         R"(||Milan|-4°|☀️|Sereno||#ffffc832||{"apparent":-7,"city":"Milan","code":0,"temp":-3.5})"},
    };
    EXPECT_TRUE(server.requestLines().isEmpty()); // nothing before it is on screen
    for (const auto& [ip, forecast, status, after] : loads) {
        server.setJson("/json/", ip);
        server.setJson("/v1/forecast", forecast, status);
        started ? model->loadWeatherData() : model->setActive(true);
        ASSERT_TRUE(allEnded());
        EXPECT_EQ(shown(*model), after);
    }

    // The stored place counts only with both coordinates; a change of those alone is no trigger.
    const std::tuple<WeatherSettings, int, const char*> cases[] = {
        {{true, " Roma , Italia, EU", 41.9, 12.5}, 2, " Roma "},
        {{true, " Roma , Italia, EU", 41.0, 12.0}, 0, " Roma "},
        {{true, "Roma, Lazio", 41.9, std::nullopt}, 1, "Milan"},
        {{false, "Napoli, Italia", 40.8, 14.2}, 2, "Milan"},
        {{true, "Napoli, Italia", 40.8, 14.2}, 1, "Napoli"},
    };
    for (const auto& [next, reloads, city] : cases) {
        const int before = started;
        settings.saveWeatherSettings(next);
        EXPECT_EQ(started - before, reloads) << city;
        EXPECT_TRUE(allEnded());
        EXPECT_EQ(model->cityName(), city);
    }
    EXPECT_TRUE(server.requestLines().last().startsWith("GET /v1/forecast?latitude=40.8&longitude=14.2&"));
    // Off screen nothing starts; back on screen one load, then one each period.
    const int before = started;
    model->setActive(false);
    settings.saveWeatherSettings({true, "Torino, Italia", 45.07, 7.69});
    EXPECT_FALSE(model->refreshScheduled());
    model->setRefreshInterval(50);
    model->setActive(true);
    EXPECT_EQ(started, before + 1);
    EXPECT_TRUE(QTest::qWaitFor([&] { return started >= before + 3; }, 20000));
    model->setActive(false);
    ASSERT_TRUE(allEnded());

    // A widget closed while its location is asked for makes no forecast request and shares nothing.
    settings.saveWeatherSettings({});
    QFile::remove(SettingsManager::sharedDataFilePath());
    server.clearRequests();
    model->setActive(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !server.requestLines().isEmpty(); }, 20000));
    model.reset();
    bool answered = false; // after the closed widget's reply, on the same server
    WeatherMonitor::shared().fetchIPLocation(nullptr, [&](const auto&) { answered = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return answered; }, 20000));
    EXPECT_EQ(server.requestLines().size(), 2);
    EXPECT_FALSE(QFile::exists(SettingsManager::sharedDataFilePath()));
    pointWeatherServicesAt("");
}

#include "WeatherWidgetModel.h"
#include "ReplayServer.h"
#include "WeatherFixtures.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>
#include <gtest/gtest.h>

namespace {

QString u8(const char* text)
{
    return QString::fromUtf8(text);
}

// What the model shows, and the weather it shares in the data file, as one line.
QString shown(const WeatherWidgetModel& m)
{
    QFile f(SettingsManager::sharedDataFilePath());
    const auto file = f.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(f.readAll()).object() : QJsonObject();
    QStringList rows;
    for (const auto& row : m.forecastRows())
        rows << QVariant(row.toMap().values()).toStringList().join(' ');
    return QStringList{m.loading() ? "loading" : "",
                       m.connectionError() ? "error" : "",
                       m.cityName(),
                       m.temperatureText(),
                       m.weatherEmoji(),
                       m.weatherDescription(),
                       m.highLowText(),
                       m.glowColor().name(QColor::HexArgb),
                       rows.join(", "),
                       QJsonDocument(file.value("weather").toObject()).toJson(QJsonDocument::Compact)}
        .join('|');
}

// Waits until `n` more loads have ended.
bool ended(WeatherWidgetModel& m, int n)
{
    int count = 0;
    QObject context;
    QObject::connect(&m, &WeatherWidgetModel::loadingChanged, &context, [&] { count += !m.loading(); });
    return QTest::qWaitFor([&] { return count >= n; }, 20000);
}

} // namespace

TEST(WeatherWidgetRules, CodesTemperaturesDaysAndRows)
{
    // Both sides of every bound of the code chain: symbol, description, glow.
    const char *partly = "\u26C5", *rain = "\U0001F327\uFE0F", *fog = "\U0001F32B\uFE0F";
    const std::pair<qint64, std::array<const char*, 3>> codes[] = {
        {-1, {partly, "Parz. nuvoloso", "#99ffc832"}},
        {0, {"\u2600\uFE0F", "Sereno", "#ffffc832"}},
        {2, {partly, "Parz. nuvoloso", "#99ffc832"}},
        {3, {"\u2601\uFE0F", "Nuvoloso", "#9996b4dc"}},
        {4, {fog, "Nebbia", "#9996b4dc"}},
        {49, {fog, "Nebbia", "#9996b4dc"}},
        {50, {rain, "Pioggerella", "#ff508cff"}},
        {57, {rain, "Pioggerella", "#ff508cff"}},
        {58, {rain, "Pioggia", "#ff508cff"}},
        {67, {rain, "Pioggia", "#ff508cff"}},
        {68, {"\u2744\uFE0F", "Neve", "#ff508cff"}},
        {77, {"\u2744\uFE0F", "Neve", "#ff508cff"}},
        {78, {"\U0001F326\uFE0F", "Rovesci", "#ff64c8ff"}},
        {82, {"\U0001F326\uFE0F", "Rovesci", "#ff64c8ff"}},
        {83, {"\u26C8\uFE0F", "Temporale", "#ff64c8ff"}},
        {99, {"\u26C8\uFE0F", "Temporale", "#ff64c8ff"}},
        {100, {"\U0001F321\uFE0F", "Sconosciuto", "#ff64c8ff"}},
    };
    for (const auto& [code, want] : codes)
        EXPECT_EQ(QStringList({WeatherWidgetModel::wmoEmoji(code), WeatherWidgetModel::wmoDesc(code),
                               WeatherWidgetModel::glowColorFor(code).name(QColor::HexArgb)}),
                  QStringList({u8(want[0]), want[1], want[2]}));
    const double inf = std::numeric_limits<double>::infinity();
    const std::pair<double, const char*> temperatures[] = {{21.5, "22°"},
                                                           {-3.5, "-4°"},
                                                           {-0.4, "0°"},
                                                           {-0.5, "-1°"},
                                                           {24.49, "24°"},
                                                           {-0.0, "0°"},
                                                           {1e18, "1000000000000000000°"},
                                                           {inf, "—°"},
                                                           {-inf, "—°"},
                                                           {std::nan(""), "—°"},
                                                           {1e19, "—°"}};
    for (const auto& [value, text] : temperatures)
        EXPECT_EQ(WeatherWidgetModel::formatTemperature(value), u8(text)) << value;

    // Today's high and low; rows for days 1 to 4, as far as every array reaches, named in Italian.
    const WeatherResponse::DailyForecast week{
        {"2024-02-28", "2024-02-29", "2024-06-08", "2024-06-09", "2024-06-10", "2024-06-11"},
        {2, 61, 3, 0, 95, 1},
        {24.4, 19.8, 22, 26.5, 27.9, 1},
        {15.2, 14.1, 13.6, -0.4, 17.4, 1}};
    const std::pair<std::function<void(WeatherResponse::DailyForecast&)>, const char*> cases[] = {
        {[](auto&) {}, "H:24° L:15° Gio Sab Dom Lun"},
        {[](auto& d) {
             d.time = {"", "2024-02-30", "03/06/2024", "2024-06-03T10:00"};
         },
         "H:24° L:15° — — —"},
        {[](auto& d) { d.weathercode.resize(2); }, "H:24° L:15° Gio"},
        {[](auto& d) { d.temperature_2m_max.resize(4); }, "H:24° L:15° Gio Sab Dom"},
        {[](auto& d) { d.temperature_2m_min.clear(); }, ""},
        {[](auto& d) { d.temperature_2m_max.clear(); }, ""},
    };
    for (const auto& [change, rows] : cases) {
        auto daily = week;
        change(daily);
        QString text = WeatherWidgetModel::highLowLine(daily);
        for (const auto& row : WeatherWidgetModel::forecastRowsFor(daily))
            text += " " + row.dayName;
        EXPECT_EQ(text, u8(rows));
    }
}

TEST(WeatherWidgetModel, StatesOfTheLoadsAndTheDataFile)
{
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    SettingsManager::shared().saveWeatherSettings({});
    QFile::remove(SettingsManager::sharedDataFilePath());
    WeatherWidgetModel model;
    EXPECT_EQ(shown(model), "loading||MILANO|||||#00000000||{}");
    const QString milan = u8("|Milan|22°|\u26C5|Parz. nuvoloso|H:24° L:15°|#99ffc832|Mar "
                             "\U0001F327\uFE0F 20° 14°, "
                             "Mer \u2601\uFE0F 22° 14°, Gio \u2600\uFE0F 27° 0°, Ven \u26C8\uFE0F "
                             "28° 17°|"
                             "{\"apparent\":20.8,\"city\":\"Milan\",\"code\":2,\"temp\":21.5}");
    // Each load with its replies and what it shows: a failure keeps what was shown, and the file.
    const struct {
        QByteArray ip, forecast;
        int status;
        QString after;
    } loads[] = {
        {"<html>", samples::forecastMilan, 200, "|error|MILANO|||||#00000000||{}"},
        {samples::ipMilan, "Bad Gateway", 502, "|error|MILANO|||||#00000000||{}"},
        {samples::ipMilan, samples::forecastMilan, 200, "|" + milan},
        {samples::ipMilan, samples::openMeteoError, 500, "|error" + milan},
        {samples::ipMilan, samples::forecastNoDaily, 200,
         u8("||Milan|-4°|\u2600\uFE0F|Sereno||#ffffc832||{\"apparent\":-7,"
            "\"city\":\"Milan\",\"code\":0,\"temp\":-3.5}")},
    };
    EXPECT_TRUE(server.requestLines().isEmpty()); // nothing before it is on screen
    for (const auto& load : loads) {
        server.setJson("/json/", load.ip);
        server.setJson("/v1/forecast", load.forecast, load.status);
        &load == loads ? model.setActive(true) : model.loadWeatherData();
        ASSERT_TRUE(ended(model, 1));
        EXPECT_EQ(shown(model), load.after);
    }

    // A widget closed while its location is asked for makes no forecast request and shares nothing.
    QFile::remove(SettingsManager::sharedDataFilePath());
    server.clearRequests();
    auto closed = std::make_unique<WeatherWidgetModel>();
    closed->setActive(true);
    EXPECT_TRUE(QTest::qWaitFor([&] { return !server.requestLines().isEmpty(); }, 20000));
    closed.reset();
    bool answered = false; // after the closed widget's reply, on the same server
    WeatherMonitor::shared().fetchIPLocation(nullptr, [&](const auto&) { answered = true; });
    EXPECT_TRUE(QTest::qWaitFor([&] { return answered; }, 20000));
    EXPECT_EQ(server.requestLines().size(), 2);
    EXPECT_FALSE(QFile::exists(SettingsManager::sharedDataFilePath()));
    pointWeatherServicesAt("");
}

TEST(WeatherWidgetModel, ReloadsOnScreenForTheCityTextTheChoiceAndEachPeriod)
{
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    server.setJson("/json/", samples::ipMilan);
    server.setJson("/v1/forecast", samples::forecastMilan);
    auto& settings = SettingsManager::shared();
    settings.saveWeatherSettings({true, "Roma, Italia", 41.9, 12.5});
    WeatherWidgetModel model;
    int loads = 0;
    QObject::connect(&model, &WeatherWidgetModel::loadingChanged, [&] { loads += model.loading(); });
    model.setActive(true);
    ASSERT_TRUE(ended(model, 1));
    EXPECT_TRUE(server.requestLines().last().startsWith("GET /v1/forecast?latitude=41.9&longitude=12.5&"));
    // The stored place counts only with both coordinates; a change of those alone is no trigger.
    const std::tuple<WeatherSettings, int, const char*> cases[] = {
        {{true, "Roma, Italia", 41.0, 12.0}, 0, "Roma"},
        {{true, " Reggio , Italia, EU", 44.7, 10.6}, 1, " Reggio "},
        {{true, " Reggio , Italia, EU", std::nullopt, std::nullopt}, 0, " Reggio "},
        {{true, "Roma, Lazio", 41.9, std::nullopt}, 1, "Milan"},
        {{false, "Napoli, Italia", 40.8, 14.2}, 2, "Milan"},
        {{true, "Napoli, Italia", 40.8, 14.2}, 1, "Napoli"},
    };
    for (const auto& [next, reloads, city] : cases) {
        const int before = loads;
        settings.saveWeatherSettings(next);
        EXPECT_EQ(loads - before, reloads) << city;
        EXPECT_TRUE(ended(model, reloads));
        EXPECT_EQ(model.cityName(), city);
    }
    // Off screen nothing starts; back on screen one load, then one each period.
    model.setActive(false);
    settings.saveWeatherSettings({true, "Torino, Italia", 45.07, 7.69});
    EXPECT_FALSE(model.refreshScheduled());
    EXPECT_EQ(loads, 6);
    model.setRefreshInterval(50);
    model.setActive(true);
    EXPECT_EQ(loads, 7);
    EXPECT_TRUE(QTest::qWaitFor([&] { return loads >= 9; }, 20000));
    pointWeatherServicesAt("");
}

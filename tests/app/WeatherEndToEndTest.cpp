// The weather widget in the running app, fed by ombrix-replay-server in a process of its own, and
// looked at from outside: screen pixels, the server's request log, the files the app writes.
#include "DefaultsSuite.h"
#include "PixelChecks.h"
#include "ReplayProcess.h"
#include "WeatherFixtures.h"
#include "XSession.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QSaveFile>
#include <gtest/gtest.h>

namespace {

constexpr int kScreenHeight = 900;

const QByteArray kGood = R"({"/json/": {"file": "ip.json"}, "/v1/forecast": {"file": "forecast.json"}})";
const QByteArray kForecastRequest =
    "GET /v1/forecast?latitude=45.4643&longitude=9.1895&current=temperature_2m,weathercode,windspeed_10m,"
    "relativehumidity_2m,apparent_temperature&daily=weathercode,temperature_2m_max,temperature_2m_min"
    "&timezone=auto&forecast_days=5 HTTP/1.1";

// What a 170 by 170 weather window shows, told apart by pixels alone.
enum class Panel { Loading, Error, Data, Unknown };

bool lit(const QColor& c)
{
    return (c.red() + c.green() + c.blue()) / 3 > 150;
}

Panel panelOf(const QImage& w)
{
    const int emoji = countPixels(w, QRect(118, 18, 34, 34), coloured);
    const int centre = countPixels(w, QRect(55, 40, 60, 70), coloured);
    const int spokes = countPixels(w, QRect(69, 57, 32, 32), lit);
    if (emoji > 50 && countPixels(w, QRect(18, 60, 60, 50), bright) > 60)
        return Panel::Data;
    if (centre > 100 && emoji == 0)
        return Panel::Error;
    if (spokes > 30 && centre == 0 && emoji == 0)
        return Panel::Loading;
    return Panel::Unknown;
}

struct App {
    XSession x;
    ReplayProcess server{x.home() + "/replies"};

    // The widgets switched on and the services pointed at the replay server, before the app starts.
    bool prepare(const QStringList& enabled, const QByteArray& routes)
    {
        server.serve(routes);
        if (!x.ok() || !server.start())
            return false;
        auto suite = DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
        for (const auto& name : enabled)
            suite->setObject(true, "widget." + name + ".enabled");
        using S = WeatherMonitor::Service;
        for (auto s : {S::IpApi, S::Geocoding, S::Forecast})
            suite->setObject(server.baseUrl(), WeatherMonitor::configKey(s));
        suite->synchronize();
        return true;
    }
    QString window(const QString& name) { return x.waitForWindow("OmbrixWidget " + name); }
    QImage shot(const QString& id) { return x.grabScreen().copy(x.geometryOf(id)); }
    // Waits for a panel and keeps the screenshot it was seen in.
    bool waitForPanel(const QString& id, Panel panel, const QString& artefact)
    {
        QImage img;
        const bool seen = XSession::waitFor([&] {
            img = shot(id);
            return panelOf(img) == panel;
        });
        img.save(artifactsDir() + "/" + artefact + ".png");
        return seen;
    }
    std::unique_ptr<DefaultsSuite> suite() { return DefaultsSuite::open(SettingsManager::suiteName, x.configDir()); }
    QJsonObject sharedWeather()
    {
        QFile f(x.home() + "/Library/Group Containers/" + SettingsManager::suiteName + "/widget-data.json");
        if (!f.open(QIODevice::ReadOnly))
            return {};
        return QJsonDocument::fromJson(f.readAll()).object().value("weather").toObject();
    }
};

} // namespace

TEST(WeatherEndToEnd, ShowsTheSpinnerThenTheWeatherItAskedFor)
{
    App app;
    // The forecast comes late enough to see the loading panel on screen.
    ASSERT_TRUE(app.prepare({"weather"}, R"({"/json/": {"file": "ip.json"},
        "/v1/forecast": {"file": "forecast.json", "delayMs": 2500}})"));
    ASSERT_TRUE(app.x.startApp());
    const QString weather = app.window("weather");
    ASSERT_FALSE(weather.isEmpty());
    EXPECT_TRUE(app.waitForPanel(weather, Panel::Loading, "weather-app-loading"));
    EXPECT_TRUE(app.waitForPanel(weather, Panel::Data, "weather-app-data"));

    EXPECT_EQ(app.server.requests(),
              (QList<QByteArray>{"GET /json/?fields=lat,lon,city,country HTTP/1.1", kForecastRequest}));
    EXPECT_TRUE(XSession::waitFor([&] { return !app.sharedWeather().isEmpty(); }));
    EXPECT_EQ(app.sharedWeather(), (QJsonObject{{"city", "Milan"}, {"temp", 21.5}, {"code", 2}, {"apparent", 20.8}}));
}

TEST(WeatherEndToEnd, ABadReplyShowsTheNetworkErrorUntilAGoodOne)
{
    struct Case {
        const char* what;
        QByteArray routes;
    };
    const QList<Case> cases = {
        {"500 with an error body", R"({"/json/": {"file": "ip.json"},
            "/v1/forecast": {"status": 500, "body": "{\"error\":true,\"reason\":\"down\"}"}})"},
        {"truncated JSON", R"({"/json/": {"file": "ip.json"},
            "/v1/forecast": {"body": "{\"current\":{\"temperature_2m\":21.5,"}})"},
        {"an HTML page for the location", R"({"/json/": {"body": "<html>captive portal</html>",
            "contentType": "text/html"}, "/v1/forecast": {"file": "forecast.json"}})"},
        {"no route at all: 404", "{}"},
    };
    App app;
    ASSERT_TRUE(app.prepare({"weather"}, cases.first().routes));
    int run = 0;
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        app.server.serve(c.routes);
        ASSERT_TRUE(app.x.startApp());
        const QString weather = app.window("weather");
        EXPECT_TRUE(app.waitForPanel(weather, Panel::Error, QString("weather-app-error-%1").arg(++run)));
        app.x.stopApp();
        // Nothing shared, nothing lost: the switch and the service hosts stay as they were.
        EXPECT_TRUE(app.sharedWeather().isEmpty());
        auto suite = app.suite();
        EXPECT_EQ(suite->boolForKey("widget.weather.enabled"), true);
        EXPECT_EQ(suite->stringForKey("service.forecast.base"), app.server.baseUrl());
    }
    // Weather held in memory doesn't outlive the process, so a new run with a good server is where
    // the data panel comes back (a failed reload inside one run is tested on the view itself).
    app.server.serve(kGood);
    ASSERT_TRUE(app.x.startApp());
    EXPECT_TRUE(app.waitForPanel(app.window("weather"), Panel::Data, "weather-app-recovered"));
    EXPECT_TRUE(XSession::waitFor([&] { return app.sharedWeather().value("city") == "Milan"; }));
}

TEST(WeatherEndToEnd, AHangingServerLeavesTheRestOfTheAppAlive)
{
    App app;
    ASSERT_TRUE(app.prepare({"clock", "weather"}, R"({"/json/": {"file": "ip.json"},
        "/v1/forecast": {"hang": true}})"));
    ASSERT_TRUE(app.x.startApp());
    const QString clock = app.window("clock"), weather = app.window("weather");
    ASSERT_FALSE(clock.isEmpty());
    ASSERT_FALSE(weather.isEmpty());
    ASSERT_TRUE(XSession::waitFor([&] { return app.server.requests().size() == 2; }));
    EXPECT_TRUE(app.waitForPanel(weather, Panel::Loading, "weather-app-hanging"));

    // The clock's second hand keeps moving while the request hangs.
    const QImage first = app.shot(clock);
    EXPECT_TRUE(XSession::waitFor([&] { return app.shot(clock) != first; }, 5000));

    // A widget still moves, and its new place is stored.
    app.x.run("xdotool", {"windowmove", clock, "200", "300"});
    const double appY = kScreenHeight - 300 - 170;
    EXPECT_TRUE(XSession::waitFor([&] {
        const auto data = app.suite()->dataForKey("widget.clock.position");
        const auto p = data ? Position::fromJson(*data) : std::nullopt;
        return p && p->x == 200 && p->y == appY;
    }));
    EXPECT_EQ(app.x.geometryOf(clock).topLeft(), QPoint(200, 300));
    const QImage moved = app.shot(clock);
    EXPECT_TRUE(XSession::waitFor([&] { return app.shot(clock) != moved; }, 5000));
    app.x.grabScreen().save(artifactsDir() + "/weather-app-hanging-moved.png");
    // Still waiting, still the spinner.
    EXPECT_EQ(panelOf(app.shot(weather)), Panel::Loading);
    EXPECT_EQ(app.server.requests().size(), 2);
}

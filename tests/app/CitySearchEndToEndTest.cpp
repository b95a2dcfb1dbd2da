// The city search typed into the real Settings tab, answered by the replay server program.
#include "DefaultsSuite.h"
#include "ReplayProcess.h"
#include "SettingsManager.h"
#include "XSession.h"

#include <QThread>
#include <gtest/gtest.h>

namespace {

// Places in the 420 by 600 panel, which opens at (510, 150) on the 1440x900 screen.
const QPoint kPanel(510, 150);
const QPoint kSettingsTab = kPanel + QPoint(180, 95);
// The "Sistema" box above the weather box moves its controls down by kSystemBox.
const int kSystemBox = 118;
const QPoint kCityField = kPanel + QPoint(170, 396 + kSystemBox);
const QPoint kSaveButton = kPanel + QPoint(349, 396 + kSystemBox);
const QRect kStatusLine(kPanel + QPoint(24, 412 + kSystemBox), QSize(300, 30));

void click(XSession& x, QPoint p)
{
    x.run("xdotool", {"mousemove", QString::number(p.x()), QString::number(p.y()), "click", "1"});
}

int pixelsNear(const QImage& img, const QRect& r, const QColor& want)
{
    int n = 0;
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) {
            const QColor c = img.pixelColor(x, y);
            n += std::abs(c.red() - want.red()) < 30 && std::abs(c.green() - want.green()) < 30 &&
                 std::abs(c.blue() - want.blue()) < 30;
        }
    return n;
}

std::optional<WeatherSettings> storedWeather(const XSession& x)
{
    const auto data = DefaultsSuite::open(SettingsManager::suiteName, x.configDir())->dataForKey("weather");
    return data ? WeatherSettings::fromJson(*data) : std::nullopt;
}

} // namespace

TEST(CitySearchEndToEnd, SavedCityIsStoredShownAndFeedsTheWeather)
{
    XSession x;
    ASSERT_TRUE(x.ok());
    ReplayProcess server(x.home() + "/replies");
    ASSERT_TRUE(server.start());
    writeFile(x.home() + "/replies/geo.json", samples::geoMilano);
    server.serve(R"({"/json/": {"file": "ip.json"}, "/v1/forecast": {"file": "forecast.json"},
                    "/v1/search": {"file": "geo.json"}})");
    {
        auto suite = DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
        for (const char* key : {"service.ipapi.base", "service.geocoding.base", "service.forecast.base"})
            suite->setObject(server.baseUrl(), key);
        suite->setObject(true, "widget.weather.enabled");
        suite->synchronize();
    }
    ASSERT_TRUE(x.startApp());
    ASSERT_FALSE(x.waitForWindow("OmbrixWidget Control Panel").isEmpty());
    ASSERT_FALSE(x.waitForWindow("OmbrixWidget weather").isEmpty());
    QThread::msleep(500);

    click(x, kSettingsTab);
    QThread::msleep(400);
    // The automatic-location switch, below the start-at-login one: turn it off.
    const QImage tab = x.grabScreen();
    tab.save(artifactsDir() + "/city-search-settings-tab.png");
    click(x, kPanel + QPoint(363, 325 + kSystemBox));
    EXPECT_TRUE(XSession::waitFor([&] { return storedWeather(x) && storedWeather(x)->useManual; }));

    click(x, kCityField);
    x.run("xdotool", {"type", "--delay", "20", "  Milano "});
    click(x, kSaveButton);
    EXPECT_TRUE(XSession::waitFor([&] {
        return storedWeather(x) == WeatherSettings{true, "Milano, Italia", 45.46427, 9.18951};
    }));
    QImage shown;
    EXPECT_TRUE(XSession::waitFor([&] {
        shown = x.grabScreen();
        return pixelsNear(shown, kStatusLine, QColor(48, 209, 88)) > 20;
    }));
    shown.save(artifactsDir() + "/city-search-found.png");
    // The search went out trimmed; the widget reloaded for the found coordinates.
    const auto requests = server.requests();
    EXPECT_TRUE(requests.contains("GET /v1/search?name=Milano&count=1&language=it&format=json HTTP/1.1"));
    EXPECT_TRUE(XSession::waitFor([&] {
        for (const QByteArray& line : server.requests())
            if (line.startsWith("GET /v1/forecast?latitude=45.46427&longitude=9.18951&"))
                return true;
        return false;
    }));

    // A name with no result: red line, nothing stored.
    server.serve(R"({"/json/": {"file": "ip.json"}, "/v1/forecast": {"file": "forecast.json"},
                    "/v1/search": {"body": "{\"generationtime_ms\":0.4}"}})");
    click(x, kCityField);
    x.run("xdotool", {"key", "ctrl+a", "BackSpace"});
    x.run("xdotool", {"type", "--delay", "20", "Atlantide"});
    click(x, kSaveButton);
    EXPECT_TRUE(XSession::waitFor([&] {
        shown = x.grabScreen();
        return pixelsNear(shown, kStatusLine, QColor(255, 69, 58)) > 20;
    }));
    shown.save(artifactsDir() + "/city-search-not-found.png");
    EXPECT_EQ(storedWeather(x), (WeatherSettings{true, "Milano, Italia", 45.46427, 9.18951}));
}

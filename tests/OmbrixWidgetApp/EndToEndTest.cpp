// The running app on a display of its own, in two sessions: the clock, a real player and snapping;
// the batteries, the weather and its city search from the panel, and the tray. They prove the wiring from
// outside (screen, settings, servers, players); the rules are tested below.
#include "BatteryTextSource.h"
#include "FakePowerSupplyTree.h"
#include "PixelChecks.h"
#include "PrivateBus.h"
#include "ReplayServer.h"
#include "UPowerMock.h"
#include "WeatherFixtures.h"
#include "XSession.h"

#include <QDBusReply>
#include <QDBusVariant>
#include <QJsonDocument>
#include <QJsonObject>
#include <csignal>
#include <gtest/gtest.h>

namespace {

// The app's shared data file, one block per widget.
QJsonObject shared(const XSession& x, const QString& widget)
{
    QFile f(x.home() + "/Library/Group Containers/" + SettingsManager::suiteName + "/widget-data.json");
    return QJsonDocument::fromJson(f.open(QIODevice::ReadOnly) ? f.readAll() : "{}").object()[widget].toObject();
}

} // namespace

TEST(AppEndToEnd, TheClockTicksARealPlayerShowsAndPausesAndADragSnapsAndIsKept)
{
    XSession x;
    PrivateBus bus;
    ASSERT_TRUE(x.ok() && bus.isRunning());
    QImage cover(64, 64, QImage::Format_RGB32);
    cover.fill(QColor(40, 110, 220));
    cover.save(x.home() + "/cover.png");
    QProcess ffmpeg, mpv;
    ffmpeg.start("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=duration=60", "-ar", "8000", "-metadata",
                            "title=Song", "-metadata", "artist=Band", x.home() + "/track.flac"});
    ASSERT_TRUE(ffmpeg.waitForFinished(60000) && ffmpeg.exitCode() == 0);
    // A hung player sorts first; Debian's mpv with its MPRIS plugin plays, the cover beside the track its art.
    QProcess* hung = bus.startPlayer("hung", {"--title", "Never"});
    ASSERT_TRUE(hung && ::kill(pid_t(hung->processId()), SIGSTOP) == 0);
    auto env = x.environment();
    env.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
    mpv.setProcessEnvironment(env);
    mpv.start("mpv", {"--no-terminal", "--no-video", "--ao=null", "--loop-file=inf", x.home() + "/track.flac"});
    x.enable({"clock"});
    x.enable({"music"}, "medium");
    ASSERT_TRUE(x.startApp(env));
    const QString clock = x.widget("clock"), music = x.widget("music");
    const QImage face = x.shot(clock);
    EXPECT_TRUE(XSession::waitFor([&] { return x.shot(clock) != face; }));
    EXPECT_TRUE(XSession::waitFor([&] { return shared(x, "music")["track"] == "Song"; }));
    EXPECT_TRUE(XSession::waitFor([&] {
        return countNear(x.shot(music), {38, 43, 84, 84}, cover.pixelColor(0, 0)) > 6400;
    }));
    x.grabScreen().save(artifactsDir() + "/app-clock-and-music.png");
    EXPECT_FALSE(x.storedPosition("clock")); // opening stores nothing
    x.click(x.geometryOf(music).topLeft() + QPoint(230, 132));
    EXPECT_TRUE(XSession::waitFor([&] {
        auto get = QDBusMessage::createMethodCall("org.mpris.MediaPlayer2.mpv", "/org/mpris/MediaPlayer2",
                                                  "org.freedesktop.DBus.Properties", "Get");
        get << QString("org.mpris.MediaPlayer2.Player") << QString("PlaybackStatus");
        const QDBusReply<QDBusVariant> reply = bus.connection().call(get);
        return reply.isValid() && reply.value().variant().toString() == "Paused";
    }));
    ::kill(pid_t(hung->processId()), SIGCONT);
    // Its buttons work without the focus, which no widget asks for, the music one with buttons included.
    for (const QString& id : {clock, music})
        EXPECT_TRUE(x.run("xprop", {"-id", id, "WM_HINTS"}).contains("accepts input or input focus: False"));
    // Dragged to within 4 to 8 points of the screen's left edge, which takes it, and stored.
    EXPECT_TRUE(x.drag(clock, {1330, 60}, {84, 300}));
    EXPECT_TRUE(XSession::waitFor([&] {
        const auto s = x.storedPosition("clock");
        return s && s->x == 0 && *s == x.originOf(clock);
    })) << x.originOf(clock).x;
}

TEST(AppEndToEnd, BatteriesAndWeatherFromTheirSourcesThePanelSwitchesAWidgetOnAndFindsACityTheTrayQuits)
{
    XSession x(XSessionOptions{.tray = true});
    ReplayServer server;
    FakePowerSupplyTree tree;
    UPowerMock upower;
    ASSERT_TRUE(x.ok() && server.listen() && upower.isRunning());
    upower.addPeripheral("AirPods Pro", 40, UPowerMock::headset, "/org/bluez/hci0/dev_AA_BB_CC_DD_EE_FF");
    tree.addLaptopBattery("BAT0", 15, "Charging");
    tree.addMains("AC", true);
    tree.addDeviceBattery("hid-mouse-battery", "Magic Mouse", 64);
    server.setJson("/json/", samples::ipMilan);
    server.setJson("/v1/forecast", samples::forecastMilan);
    server.setJson("/v1/search", samples::geoMilano);
    auto suite = x.settings();
    suite->setObject(tree.root(), SystemBatteryTexts::rootConfigKey);
    for (auto service :
         {WeatherMonitor::Service::IpApi, WeatherMonitor::Service::Geocoding, WeatherMonitor::Service::Forecast})
        suite->setObject(server.baseUrl(), WeatherMonitor::configKey(service));
    suite->synchronize();
    x.enable({"weather"});
    x.enable({"battery"}, "medium");
    QProcessEnvironment env;
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", upower.address());
    ASSERT_TRUE(x.startApp(env));
    // Our icon docks at the tray's right end: mostly its blue face.
    EXPECT_TRUE(XSession::waitFor([&] {
        return countNear(x.grabScreen(), {1404, 0, 36, 24}, QColor(44, 104, 234), 50) > 60;
    }));
    EXPECT_TRUE(XSession::waitFor([&] { return shared(x, "weather")["city"] == "Milan"; }));
    // The computer red at 15 %, then the headset and the mouse.
    const QString battery = x.widget("battery");
    EXPECT_TRUE(XSession::waitFor([&] {
        return paintRuns(x.shot(battery), 8, 130) == QList<Hue>{Hue::Red, Hue::Green, Hue::Green};
    }));
    // The panel opens at the first start, centred and active.
    const QString window = x.waitForWindow("OmbrixWidget Control Panel");
    XSession::waitFor([&] {
        return x.run("xprop", {"-root", "_NET_ACTIVE_WINDOW"}).contains(QString::number(window.toLongLong(), 16));
    });
    const QPoint panel = x.geometryOf(window).topLeft();
    EXPECT_EQ(panel, QPoint(510, 150));
    const auto clickAndWait = [&](QPoint at) {
        const QImage before = x.shot(window);
        x.click(panel + at);
        return XSession::waitFor([&] { return x.shot(window) != before; });
    };
    // Settings tab, automatic location off, a city typed and saved.
    ASSERT_TRUE(clickAndWait({180, 95}));
    ASSERT_TRUE(clickAndWait({363, 443}));
    x.click(panel + QPoint(170, 514));
    x.run("xdotool", {"type", "--delay", "20", "  Milano "});
    x.click(panel + QPoint(349, 514));
    EXPECT_TRUE(XSession::waitFor([&] {
        const auto data = x.settings()->dataForKey("weather");
        return data && WeatherSettings::fromJson(*data) == WeatherSettings{true, "Milano, Italia", 45.46427, 9.18951};
    }));
    EXPECT_TRUE(XSession::waitFor([&] {
        return server.requestLines().join('\n').contains("GET /v1/forecast?latitude=45.46427&longitude=9.18951&");
    }));
    // Back on the first tab, the clock card's switch.
    ASSERT_TRUE(clickAndWait({60, 95}));
    x.click(panel + QPoint(363, 213));
    EXPECT_EQ(x.geometryOf(x.widget("clock")), QRect(1250, 40, 170, 170));
    EXPECT_TRUE(XSession::waitFor([&] { return x.settings()->boolForKey("widget.clock.enabled") == true; }));
    // The keys the tray item's menu shows: Ctrl+P in the open menu brings the closed panel back,
    // Ctrl+Q in the active panel quits.
    x.click(panel + QPoint(16, 14));
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed("OmbrixWidget Control Panel").isEmpty(); }));
    const auto windows = [&] { return x.run("xdotool", {"search", "--onlyvisible", "--class", "OmbrixWidget"}); };
    const qsizetype closed = windows().count('\n');
    x.click({1428, 12});
    ASSERT_TRUE(XSession::waitFor([&] { return windows().count('\n') > closed; }));
    x.run("xdotool", {"key", "ctrl+p"});
    const QString back = x.waitForWindow("OmbrixWidget Control Panel");
    ASSERT_FALSE(back.isEmpty());
    ASSERT_TRUE(XSession::waitFor([&] {
        return x.run("xprop", {"-root", "_NET_ACTIVE_WINDOW"}).contains(QString::number(back.toLongLong(), 16));
    }));
    x.run("xdotool", {"key", "ctrl+q"});
    ASSERT_TRUE(x.app()->waitForFinished(30000));
}

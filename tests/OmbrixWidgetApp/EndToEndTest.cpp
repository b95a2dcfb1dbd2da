// The running app on a display of its own: a scenario per widget plus the panel and snapping. They
// prove the wiring from outside (screen, settings, servers, players); the rules are tested below.
#include "BatteryTextSource.h"
#include "FakePowerSupplyTree.h"
#include "PixelChecks.h"
#include "PrivateBus.h"
#include "ReplayProcess.h"
#include "UPowerMock.h"
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

// The panel's top left once it is shown and active.
QPoint panelAt(const XSession& x)
{
    const QString panel = x.waitForWindow("OmbrixWidget Control Panel");
    XSession::waitFor([&] {
        return x.run("xprop", {"-root", "_NET_ACTIVE_WINDOW"}).contains(QString::number(panel.toLongLong(), 16));
    });
    return x.geometryOf(panel).topLeft();
}

} // namespace

TEST(AppEndToEnd, FourWidgetsOpenInPlaceTheClockTicksAndADragSnapsAndIsKept)
{
    XSession x;
    ASSERT_TRUE(x.ok());
    x.enable({"clock", "weather", "battery", "music"});
    x.pointWeatherAt();
    ASSERT_TRUE(x.startApp());
    for (const auto& [name, frame] : {std::pair{"clock", QRect(1250, 40, 170, 170)},
                                      {"weather", {1250, 250, 170, 170}},
                                      {"battery", {1250, 460, 170, 170}},
                                      {"music", {1080, 690, 340, 170}}})
        EXPECT_EQ(x.geometryOf(x.widget(name)), frame) << name;
    const QString clock = x.widget("clock");
    const QImage face = x.shot(clock);
    EXPECT_TRUE(XSession::waitFor([&] { return x.shot(clock) != face; }));
    x.grabScreen().save(artifactsDir() + "/app-four-widgets.png");
    EXPECT_FALSE(x.storedPosition("clock")); // opening stores nothing
    // Dragged to within 4 to 8 points of the screen's left edge, which takes it; stored, and back there next time.
    EXPECT_TRUE(x.drag(clock, {1330, 60}, {84, 300}));
    EXPECT_TRUE(XSession::waitFor([&] {
        const auto s = x.storedPosition("clock");
        return s && s->x == 0 && *s == x.originOf(clock);
    })) << x.originOf(clock).x;
    const Position snapped = x.originOf(clock);
    x.stopApp();
    ASSERT_TRUE(x.startApp());
    EXPECT_TRUE(XSession::waitFor([&] { return x.originOf(x.widget("clock")) == snapped; }));
}

TEST(AppEndToEnd, TheWeatherComesFromTheServiceAndACityFoundFromThePanelFeedsIt)
{
    XSession x;
    ReplayProcess server(x.home() + "/replies");
    ASSERT_TRUE(x.ok() && server.start());
    writeFile(x.home() + "/replies/geo.json", samples::geoMilano);
    server.serve(R"({"/json/": {"file": "ip.json"}, "/v1/forecast": {"file": "forecast.json"},
                    "/v1/search": {"file": "geo.json"}})");
    x.pointWeatherAt(server.baseUrl());
    x.enable({"weather"});
    ASSERT_TRUE(x.startApp());
    EXPECT_TRUE(XSession::waitFor([&] { return shared(x, "weather")["city"] == "Milan"; }));
    // Settings tab, automatic location off, a city typed and saved.
    const QPoint panel = panelAt(x);
    const QImage before = x.grabScreen();
    x.click(panel + QPoint(180, 95));
    ASSERT_TRUE(XSession::waitFor([&] { return x.grabScreen() != before; }));
    x.click(panel + QPoint(363, 443));
    const auto stored = [&] {
        const auto data = x.settings()->dataForKey("weather");
        return data ? WeatherSettings::fromJson(*data) : std::nullopt;
    };
    EXPECT_TRUE(XSession::waitFor([&] { return stored() && stored()->useManual; }));
    x.click(panel + QPoint(170, 514));
    x.run("xdotool", {"type", "--delay", "20", "  Milano "});
    x.click(panel + QPoint(349, 514));
    EXPECT_TRUE(XSession::waitFor([&] {
        return stored() == WeatherSettings{true, "Milano, Italia", 45.46427, 9.18951};
    }));
    EXPECT_TRUE(XSession::waitFor([&] {
        return server.requests().join('\n').contains("GET /v1/forecast?latitude=45.46427&longitude=9.18951&");
    }));
}

TEST(AppEndToEnd, BatteryRingsComeFromUPowerAndThePowerSupplyTree)
{
    XSession x;
    FakePowerSupplyTree tree;
    UPowerMock upower;
    ASSERT_TRUE(x.ok() && upower.isRunning());
    upower.addPeripheral("AirPods Pro", 40, UPowerMock::headset, "/org/bluez/hci0/dev_AA_BB_CC_DD_EE_FF");
    tree.addLaptopBattery("BAT0", 15, "Charging");
    tree.addMains("AC", true);
    tree.addDeviceBattery("hid-mouse-battery", "Magic Mouse", 64);
    x.enable({"battery"}, "medium");
    auto suite = x.settings();
    suite->setObject(tree.root(), SystemBatteryTexts::rootConfigKey);
    suite->synchronize();
    QProcessEnvironment env;
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", upower.address());
    ASSERT_TRUE(x.startApp(env));
    // The computer red at 15 %, then the headset and the mouse.
    const QString battery = x.widget("battery");
    EXPECT_TRUE(XSession::waitFor([&] {
        return paintRuns(x.shot(battery), 8, 130) == QList<Hue>{Hue::Red, Hue::Green, Hue::Green};
    }));
}

TEST(AppEndToEnd, MusicShowsARealPlayerAndItsButtonPausesIt)
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
    // A player that never answers sorts first; Debian's mpv with its MPRIS plugin plays.
    QProcess* hung = bus.startPlayer("hung", {"--title", "Never"});
    ASSERT_TRUE(hung && ::kill(pid_t(hung->processId()), SIGSTOP) == 0);
    auto env = x.environment();
    env.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
    mpv.setProcessEnvironment(env);
    mpv.start("mpv", {"--no-terminal", "--no-video", "--ao=null", "--loop-file=inf", x.home() + "/track.flac"});
    x.enable({"music"}, "medium");
    ASSERT_TRUE(x.startApp(env));
    const QString music = x.widget("music");
    EXPECT_TRUE(XSession::waitFor([&] { return shared(x, "music")["track"] == "Song"; }));
    EXPECT_EQ(shared(x, "music")["source"], "mpv");
    EXPECT_TRUE(XSession::waitFor([&] {
        return countNear(x.shot(music), {38, 43, 84, 84}, cover.pixelColor(0, 0)) > 6400;
    }));
    x.shot(music).save(artifactsDir() + "/app-music.png");
    x.click(x.geometryOf(music).topLeft() + QPoint(230, 132));
    EXPECT_TRUE(XSession::waitFor([&] {
        auto get = QDBusMessage::createMethodCall("org.mpris.MediaPlayer2.mpv", "/org/mpris/MediaPlayer2",
                                                  "org.freedesktop.DBus.Properties", "Get");
        get << QString("org.mpris.MediaPlayer2.Player") << QString("PlaybackStatus");
        const QDBusReply<QDBusVariant> reply = bus.connection().call(get);
        return reply.isValid() && reply.value().variant().toString() == "Paused";
    }));
    ::kill(pid_t(hung->processId()), SIGCONT);
}

TEST(AppEndToEnd, ThePanelSwitchesAWidgetOnAndTheTrayQuits)
{
    XSession x(XSessionOptions{.tray = true});
    ASSERT_TRUE(x.ok() && x.startApp());
    // Our icon docks at the tray's right end: mostly its blue face.
    EXPECT_TRUE(XSession::waitFor([&] {
        return countNear(x.grabScreen(), {1404, 0, 36, 24}, QColor(44, 104, 234), 50) > 60;
    }));
    EXPECT_EQ(panelAt(x), QPoint(510, 150));
    x.click({873, 363}); // the clock card's switch
    EXPECT_EQ(x.geometryOf(x.widget("clock")), QRect(1250, 40, 170, 170));
    EXPECT_TRUE(XSession::waitFor([&] { return x.settings()->boolForKey("widget.clock.enabled") == true; }));
    // "Esci", the last entry of the tray item's menu.
    const auto windows = [&] { return x.run("xdotool", {"search", "--onlyvisible", "--class", "OmbrixWidget"}); };
    const qsizetype closed = windows().count('\n');
    x.click({1428, 12});
    ASSERT_TRUE(XSession::waitFor([&] { return windows().count('\n') > closed; }));
    x.run("xdotool", {"key", "Up", "Return"});
    ASSERT_TRUE(x.app()->waitForFinished(30000));
    ASSERT_TRUE(x.startApp());
    EXPECT_EQ(x.geometryOf(x.widget("clock")), QRect(1250, 40, 170, 170));
}

// The music widget in the running app, fed by a test MPRIS player on a private session bus, and
// looked at and clicked from outside: screen pixels, real pointer clicks, the player's call log.
#include "DefaultsSuite.h"
#include "ImageServer.h"
#include "PixelChecks.h"
#include "PrivateBus.h"
#include "SettingsManager.h"
#include "XSession.h"

#include <QDBusConnectionInterface>
#include <QDBusMessage>
#include <QDBusReply>
#include <QDBusVariant>
#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QThread>
#include <csignal>
#include <gtest/gtest.h>

namespace {

const QColor kCover(40, 110, 220);
const QColor kGreen(29, 185, 84);

struct MusicApp {
    XSession x;
    PrivateBus bus;
    ImageServer images;
    QString log = x.home() + "/player.log";
    QString id;

    MusicApp()
    {
        auto suite = DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
        suite->setObject(true, "widget.music.enabled");
        suite->setObject(QString("medium"), "widget.music.size");
        suite->synchronize();
        QImage cover(64, 64, QImage::Format_RGB32);
        cover.fill(kCover);
        images.serve("/cover.png", ImageServer::png(cover));
    }
    bool start(bool withClock = false)
    {
        if (withClock) {
            auto suite = DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
            suite->setObject(true, "widget.clock.enabled");
            suite->synchronize();
        }
        QProcessEnvironment env;
        env.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
        if (!x.ok() || !bus.isRunning() || !x.startApp(env))
            return false;
        XSession::waitFor([&] {
            id = x.windowsNamed("OmbrixWidget music").value(0);
            return !id.isEmpty();
        });
        return !id.isEmpty();
    }
    QRect frame() const { return x.geometryOf(id); }
    // The widget's own pixels, as the screen shows them.
    QImage shot() const { return x.grabScreen().copy(frame()); }
    QStringList calls() const
    {
        QFile f(log);
        return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()).split('\n', Qt::SkipEmptyParts)
                                           : QStringList();
    }
    // The music block of the app's shared data file.
    QJsonObject written() const
    {
        QFile f(x.home() + "/Library/Group Containers/" + SettingsManager::suiteName + "/widget-data.json");
        return f.open(QIODevice::ReadOnly) ? QJsonDocument::fromJson(f.readAll()).object().value("music").toObject()
                                           : QJsonObject();
    }
    void click(QPoint inWidget)
    {
        const QPoint p = frame().topLeft() + inWidget;
        x.run("xdotool", {"mousemove", QString::number(p.x()), QString::number(p.y()), "click", "1"});
    }
};

// Where the medium layout puts things, in the widget's pixels.
const QRect kArt(38, 43, 84, 84); // the middle of the 124-square artwork
const QPoint kPrevious(178, 132), kPlayPause(230, 132), kNext(282, 132);
const QRect kPlayRing(222, 116, 16, 6); // inside the play button, above its symbol

} // namespace

TEST(MusicEndToEnd, ShowsTheTrackAndItsButtonsReachThePlayer)
{
    MusicApp app;
    ASSERT_TRUE(app.start());
    ASSERT_EQ(app.frame().size(), QSize(340, 170));

    // No player yet: the waiting case, neither cover nor green button.
    ASSERT_TRUE(XSession::waitFor([&] { return !app.shot().isNull(); }));
    const QImage waiting = app.shot();
    waiting.save(artifactsDir() + "/music-e2e-waiting.png");
    EXPECT_EQ(countNear(waiting, kArt, kCover), 0);
    EXPECT_EQ(countNear(waiting, kPlayRing, kGreen), 0);

    ASSERT_TRUE(app.bus.startPlayer("spotify", {"--title", "Bohemian Rhapsody", "--artist", "Queen", "--art-url",
                                                app.images.url("/cover.png"), "--log", app.log}));
    // Within a poll or two: the cover fills the art frame and the play button is Spotify green.
    EXPECT_TRUE(XSession::waitFor(
        [&] {
            const QImage s = app.shot();
            return countNear(s, kArt, kCover) > kArt.width() * kArt.height() * 9 / 10 &&
                   countNear(s, kPlayRing, kGreen) > kPlayRing.width() * kPlayRing.height() / 2;
        },
        15000));
    const QImage playing = app.shot();
    playing.save(artifactsDir() + "/music-e2e-playing.png");
    EXPECT_EQ(app.images.requestCount("/cover.png"), 1);

    // Real clicks on the three buttons reach the player, and none of them moves the window.
    const QRect before = app.frame();
    const struct {
        QPoint at;
        QString call;
    } buttons[] = {{kPrevious, "Previous"}, {kNext, "Next"}, {kPlayPause, "PlayPause"}};
    QStringList expected;
    for (const auto& b : buttons) {
        app.click(b.at);
        expected << b.call;
        EXPECT_TRUE(XSession::waitFor([&] { return app.calls() == expected; }, 5000))
            << app.calls().join(",").toStdString();
        EXPECT_EQ(app.frame(), before);
    }
    // Play-pause paused the player: the widget goes back to waiting within the follow-up refresh.
    EXPECT_TRUE(XSession::waitFor([&] { return countNear(app.shot(), kArt, kCover) == 0; }, 5000));
    const QImage paused = app.shot();
    paused.save(artifactsDir() + "/music-e2e-paused.png");
    EXPECT_EQ(countNear(paused, kPlayRing, kGreen), 0);
}

TEST(MusicEndToEnd, APressOnTheGlassStillDragsTheWindow)
{
    MusicApp app;
    ASSERT_TRUE(app.bus.startPlayer("spotify", {"--title", "Song", "--log", app.log}));
    ASSERT_TRUE(app.start());
    const QRect start = app.frame();
    // Between the artwork and the buttons, on nothing that takes a press.
    const QPoint from = start.topLeft() + QPoint(152, 100);
    app.x.run("xdotool", {"mousemove", QString::number(from.x()), QString::number(from.y()), "mousedown", "1"});
    QThread::msleep(200);
    for (int step = 1; step <= 6; ++step) {
        app.x.run("xdotool",
                  {"mousemove", QString::number(from.x() - 40 * step), QString::number(from.y() - 30 * step)});
        QThread::msleep(30);
    }
    QThread::msleep(200);
    app.x.run("xdotool", {"mouseup", "1"});
    EXPECT_TRUE(XSession::waitFor([&] { return app.frame().topLeft() != start.topLeft(); }, 5000));
    EXPECT_TRUE(app.calls().isEmpty()) << app.calls().join(",").toStdString();
}

namespace {

// A tagged track with a cover beside it, in its own folder, made with Debian's ffmpeg.
QString makeTrack(const QString& dir, const QString& title, const QString& artist, const QColor& cover)
{
    QDir().mkpath(dir);
    QImage image(64, 64, QImage::Format_RGB32);
    image.fill(cover);
    image.save(dir + "/cover.png");
    const QString track = dir + "/track.flac";
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg", {"-v", "error", "-f", "lavfi", "-i", "sine=frequency=440:duration=120", "-ar", "8000", "-ac",
                            "1", "-metadata", "title=" + title, "-metadata", "artist=" + artist, track});
    return ffmpeg.waitForFinished(30000) && ffmpeg.exitCode() == 0 ? track : QString();
}

// Debian's mpv with its MPRIS plugin, without sound or picture; paused from the start if asked.
std::unique_ptr<QProcess> startMpv(const XSession& x, const QString& track, bool paused)
{
    auto mpv = std::make_unique<QProcess>();
    QProcessEnvironment env = x.environment();
    env.insert("DBUS_SESSION_BUS_ADDRESS", qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
    mpv->setProcessEnvironment(env);
    QStringList args{"--no-terminal", "--no-video", "--ao=null", "--loop-file=inf", track};
    if (paused)
        args.prepend("--pause");
    mpv->start("mpv", args);
    return mpv;
}

QString status(const QDBusConnection& bus, const QString& busName)
{
    QDBusMessage get =
        QDBusMessage::createMethodCall(busName, "/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties", "Get");
    get << QString("org.mpris.MediaPlayer2.Player") << QString("PlaybackStatus");
    const QDBusReply<QDBusVariant> reply = bus.call(get);
    return reply.isValid() ? reply.value().variant().toString() : QString();
}

QStringList mprisNames(const QDBusConnection& bus)
{
    QStringList names = bus.interface()->registeredServiceNames().value();
    return names.filter("org.mpris.MediaPlayer2.");
}

} // namespace

// Real players: a paused mpv that sorts first by name, a playing one, and a player that never
// answers anything, beside the clock.
TEST(MusicEndToEnd, RealPlayersTheOneThatPlaysIsShownAndDriven)
{
    MusicApp app;
    const QColor firstCover(230, 120, 20);
    const QString first = makeTrack(app.x.home() + "/first", "First Song", "Early Band", firstCover);
    const QString second = makeTrack(app.x.home() + "/second", "Second Song", "Late Band", kCover);
    ASSERT_FALSE(first.isEmpty());
    ASSERT_FALSE(second.isEmpty());

    QProcess* hung = app.bus.startPlayer("hung", {"--title", "Never"});
    ASSERT_NE(hung, nullptr);
    ASSERT_EQ(::kill(pid_t(hung->processId()), SIGSTOP), 0);
    const QDBusConnection bus = app.bus.connection();
    auto paused = startMpv(app.x, first, true);
    ASSERT_TRUE(app.bus.waitForName("org.mpris.MediaPlayer2.mpv", true));
    auto playing = startMpv(app.x, second, false);
    QString playingName;
    ASSERT_TRUE(XSession::waitFor([&] {
        playingName = mprisNames(bus).filter("mpv.instance").value(0);
        return !playingName.isEmpty();
    }));

    ASSERT_TRUE(app.start(true));
    const QString clock = app.x.waitForWindow("OmbrixWidget clock");
    ASSERT_FALSE(clock.isEmpty());

    // The playing one, its tags, its name and its cover from file://, though a paused player and
    // a hung one sort before it.
    EXPECT_TRUE(XSession::waitFor([&] { return app.written().value("track") == "Second Song"; }));
    EXPECT_EQ(app.written().value("artist"), "Late Band");
    EXPECT_EQ(app.written().value("source"), "mpv");
    EXPECT_EQ(app.written().value("artwork"), QUrl::fromLocalFile(app.x.home() + "/second/cover.png").toString());
    EXPECT_TRUE(
        XSession::waitFor([&] { return countNear(app.shot(), kArt, kCover) > kArt.width() * kArt.height() * 9 / 10; }));
    app.shot().save(artifactsDir() + "/music-e2e-mpv.png");

    // The clock keeps ticking all along: three different faces within a few seconds.
    const auto clockShot = [&] { return app.x.grabScreen().copy(app.x.geometryOf(clock)); };
    QList<QImage> faces{clockShot()};
    EXPECT_TRUE(XSession::waitFor(
        [&] {
            if (clockShot() != faces.last())
                faces << clockShot();
            return faces.size() >= 3;
        },
        5000));

    // The widget's button really pauses mpv.
    app.click(kPlayPause);
    EXPECT_TRUE(XSession::waitFor([&] { return status(bus, playingName) == "Paused"; }, 5000));
    EXPECT_TRUE(XSession::waitFor([&] { return app.written().value("playing") == false; }, 5000));

    // The other one starts playing: it takes over within a second, with its own cover.
    bus.call(QDBusMessage::createMethodCall("org.mpris.MediaPlayer2.mpv", "/org/mpris/MediaPlayer2",
                                            "org.mpris.MediaPlayer2.Player", "Play"));
    EXPECT_TRUE(XSession::waitFor([&] { return app.written().value("track") == "First Song"; }, 1000));
    EXPECT_TRUE(XSession::waitFor(
        [&] { return countNear(app.shot(), kArt, firstCover) > kArt.width() * kArt.height() * 9 / 10; }));
    app.shot().save(artifactsDir() + "/music-e2e-mpv-takeover.png");

    ::kill(pid_t(hung->processId()), SIGCONT);
    for (auto* mpv : {paused.get(), playing.get()}) {
        mpv->terminate();
        mpv->waitForFinished();
    }
}

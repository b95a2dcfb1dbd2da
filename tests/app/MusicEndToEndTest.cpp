// The music widget in the running app, fed by a test MPRIS player on a private session bus, and
// looked at and clicked from outside: screen pixels, real pointer clicks, the player's call log.
#include "ColorMatch.h"
#include "DefaultsSuite.h"
#include "ImageServer.h"
#include "PrivateBus.h"
#include "SettingsManager.h"
#include "XSession.h"

#include <QFile>
#include <QThread>
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
    bool start()
    {
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
    EXPECT_TRUE(XSession::waitFor([&] {
        const QImage s = app.shot();
        return countNear(s, kArt, kCover) > kArt.width() * kArt.height() * 9 / 10
            && countNear(s, kPlayRing, kGreen) > kPlayRing.width() * kPlayRing.height() / 2;
    }, 15000));
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
        app.x.run("xdotool", {"mousemove", QString::number(from.x() - 40 * step), QString::number(from.y() - 30 * step)});
        QThread::msleep(30);
    }
    QThread::msleep(200);
    app.x.run("xdotool", {"mouseup", "1"});
    EXPECT_TRUE(XSession::waitFor([&] { return app.frame().topLeft() != start.topLeft(); }, 5000));
    EXPECT_TRUE(app.calls().isEmpty()) << app.calls().join(",").toStdString();
}

// The Control Panel and the tray item in the running app, driven by real clicks and keys.
#include "DefaultsSuite.h"
#include "SettingsManager.h"
#include "XSession.h"

#include <QThread>
#include <gtest/gtest.h>

namespace {

constexpr int kScreenHeight = 900;

std::unique_ptr<DefaultsSuite> suiteOf(const XSession& x)
{
    return DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
}

// Centres of the white switch knobs in a vertical band of the screen, top to bottom.
QList<QPoint> knobs(const QImage& screen, int left, int right, int top, int bottom)
{
    QList<QPoint> found;
    int runStart = -1, sumX = 0, countX = 0;
    for (int y = top; y <= bottom + 1; ++y) {
        int n = 0, sx = 0;
        if (y <= bottom)
            for (int x = left; x <= right; ++x)
                if (screen.pixelColor(x, y) == QColor(Qt::white)) {
                    ++n;
                    sx += x;
                }
        if (n >= 3) {
            if (runStart < 0)
                runStart = y, sumX = 0, countX = 0;
            sumX += sx;
            countX += n;
        } else if (runStart >= 0) {
            if (y - runStart >= 8)
                found.append(QPoint(sumX / countX, (runStart + y - 1) / 2));
            runStart = -1;
        }
    }
    return found;
}

void click(XSession& x, QPoint p)
{
    x.run("xdotool", {"mousemove", QString::number(p.x()), QString::number(p.y()), "click", "1"});
}

QRect widgetRect(XSession& x, const QString& name)
{
    const QString id = x.windowsNamed("OmbrixWidget " + name).value(0);
    return id.isEmpty() ? QRect() : x.geometryOf(id);
}

} // namespace

TEST(PanelEndToEnd, PanelDrivesWidgetsAndTheTrayEndsTheApp)
{
    XSession x(XSessionOptions{true, false});
    ASSERT_TRUE(x.ok());
    ASSERT_TRUE(x.startApp());

    // Centred on the 1440x900 screen and in front.
    QString panel;
    ASSERT_TRUE(XSession::waitFor([&] {
        panel = x.windowsNamed("OmbrixWidget Control Panel").value(0);
        return !panel.isEmpty();
    }));
    EXPECT_EQ(x.geometryOf(panel), QRect(510, 150, 420, 600));
    EXPECT_TRUE(XSession::waitFor([&] {
        return x.run("xprop", {"-root", "_NET_ACTIVE_WINDOW"}).contains(QString::number(panel.toLongLong(), 16));
    }));
    QThread::msleep(500);
    QImage screen = x.grabScreen();
    screen.save(artifactsDir() + "/panel-e2e-start.png");

    // The first knob in the switch column is the clock card's.
    const auto cardKnobs = knobs(screen, 840, 905, 300, 740);
    ASSERT_FALSE(cardKnobs.isEmpty());
    click(x, cardKnobs.first());
    QRect clock;
    ASSERT_TRUE(XSession::waitFor([&] { return !(clock = widgetRect(x, "clock")).isNull(); }));
    EXPECT_EQ(clock, QRect(1250, kScreenHeight - 690 - 170, 170, 170));
    EXPECT_TRUE(XSession::waitFor([&] { return suiteOf(x)->boolForKey("widget.clock.enabled") == true; }));

    // The card opened: click-through switch, then the two pickers, one row apart each.
    QThread::msleep(400);
    screen = x.grabScreen();
    screen.save(artifactsDir() + "/panel-e2e-clock-on.png");
    const auto rowKnobs = knobs(screen, 840, 905, cardKnobs.first().y() + 20, cardKnobs.first().y() + 80);
    ASSERT_FALSE(rowKnobs.isEmpty());
    const QPoint clickThroughKnob = rowKnobs.first();
    const int rowPitch = 36;
    // "Dimensione widget": open the menu and take the entry above "Piccolo (2x2)", "Medio (4x2)".
    click(x, QPoint(800, clickThroughKnob.y() + 2 * rowPitch));
    QThread::msleep(400);
    x.grabScreen().save(artifactsDir() + "/panel-e2e-size-menu.png");
    x.run("xdotool", {"key", "Up", "Return"});
    EXPECT_TRUE(XSession::waitFor([&] { return widgetRect(x, "clock") == QRect(1080, 40, 340, 170); }))
        << widgetRect(x, "clock").x() << "," << widgetRect(x, "clock").width();
    EXPECT_TRUE(XSession::waitFor([&] { return suiteOf(x)->stringForKey("widget.clock.size") == QString("medium"); }));

    // Click-through on: a click on the widget no longer reaches it (it is not even dragged).
    click(x, clickThroughKnob);
    EXPECT_TRUE(XSession::waitFor([&] { return suiteOf(x)->boolForKey("widget.clock.clickThrough") == true; }));

    // "Esci" from the tray menu: the last entry.
    const QString tray = x.run("xdotool", {"search", "--class", "trayer"}).split('\n', Qt::SkipEmptyParts).value(0);
    QRect trayRect;
    for (const QString& id : x.run("xdotool", {"search", "--class", "trayer"}).split('\n', Qt::SkipEmptyParts)) {
        const QRect r = x.geometryOf(id);
        if (r.width() >= 20 && r.y() == 0)
            trayRect = r;
    }
    ASSERT_FALSE(trayRect.isNull());
    click(x, trayRect.center());
    QThread::msleep(500);
    x.grabScreen().save(artifactsDir() + "/panel-e2e-tray-menu.png");
    x.run("xdotool", {"key", "Up", "Return"});
    ASSERT_TRUE(XSession::waitFor([&] { return x.app()->state() == QProcess::NotRunning; }, 10000));
    EXPECT_EQ(suiteOf(x)->boolForKey("widget.clock.enabled"), true);

    // The next start brings the same widget back, medium and click-through.
    ASSERT_TRUE(x.startApp());
    EXPECT_TRUE(XSession::waitFor([&] { return widgetRect(x, "clock") == QRect(1080, 40, 340, 170); }));
    const QString clockId = x.windowsNamed("OmbrixWidget clock").value(0);
    EXPECT_TRUE(x.run("xwininfo", {"-id", clockId, "-shape"}).contains("No input shape") == false);
}

TEST(PanelEndToEnd, ASecondStartShowsTheClosedPanelAndExits)
{
    XSession x;
    ASSERT_TRUE(x.ok());
    {
        auto suite = suiteOf(x);
        suite->setObject(true, "widget.clock.enabled");
        suite->synchronize();
    }
    ASSERT_TRUE(x.startApp());
    QString panel;
    ASSERT_TRUE(XSession::waitFor([&] {
        panel = x.windowsNamed("OmbrixWidget Control Panel").value(0);
        return !panel.isEmpty();
    }));
    // Close it with its own control (top left), then start the program again.
    click(x, QPoint(510 + 16, 150 + 14));
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed("OmbrixWidget Control Panel").isEmpty(); }));
    QProcess second;
    second.setProcessEnvironment(x.environment());
    second.start(buildDir() + "/OmbrixWidget", {});
    ASSERT_TRUE(second.waitForFinished(10000));
    EXPECT_EQ(second.exitCode(), 0);
    EXPECT_TRUE(XSession::waitFor([&] { return x.windowsNamed("OmbrixWidget Control Panel").size() == 1; }));
    EXPECT_EQ(x.windowsNamed("OmbrixWidget clock").size(), 1);
    EXPECT_EQ(x.app()->state(), QProcess::Running);
}

// The battery widget in the running app, reading UPower (dbusmock's) on a stand-in system bus and a
// fake power-supply tree named in its settings, and driven through the real Control Panel with
// clicks found in screen grabs.
#include "BatteryTextSource.h"
#include "Blobs.h"
#include "DefaultsSuite.h"
#include "FakePowerSupplyTree.h"
#include "PixelChecks.h"
#include "SettingsManager.h"
#include "UPowerMock.h"
#include "XSession.h"

#include <QThread>
#include <gtest/gtest.h>

namespace {

bool knobWhite(const QColor& c)
{
    return c == QColor(Qt::white);
}
bool accentBlue(const QColor& c)
{
    return c.blue() > 200 && c.red() < 60 && c.green() > 90 && c.green() < 150;
}

void click(XSession& x, QPoint p)
{
    x.run("xdotool", {"mousemove", QString::number(p.x()), QString::number(p.y()), "click", "1"});
}

struct App {
    XSession x;
    FakePowerSupplyTree tree;
    UPowerMock upower;

    QImage shot(const QString& id) { return x.grabScreen().copy(x.geometryOf(id)); }
    // Waits until the widget's ring arcs read `arcs` from left to right, and keeps that screenshot.
    bool waitForArcs(const QString& id, const QList<Hue>& arcs, const QString& artefact, int timeoutMs = 15000)
    {
        QImage img;
        const bool seen = XSession::waitFor(
            [&] {
                img = shot(id);
                return paintRuns(img, 8, 130) == arcs;
            },
            timeoutMs);
        img.save(artifactsDir() + "/" + artefact + ".png");
        return seen;
    }
    QImage panelShot(const QString& artefact)
    {
        QThread::msleep(400); // the switch knob slides for 120 ms
        const QImage screen = x.grabScreen();
        screen.save(artifactsDir() + "/" + artefact + ".png");
        return screen;
    }
};

} // namespace

TEST(BatteryEndToEnd, RingsFromUPowerAndTheTreeAndTheMouseCheckboxHidesItsRing)
{
    App app;
    ASSERT_TRUE(app.x.ok());
    ASSERT_TRUE(app.upower.isRunning());
    // The headset only UPower knows (BlueZ); the laptop and the mouse from the tree.
    app.upower.addPeripheral("AirPods Pro", 40, UPowerMock::headset, "/org/bluez/hci0/dev_AA_BB_CC_DD_EE_FF");
    app.tree.addLaptopBattery("BAT0", 15, "Charging");
    app.tree.addMains("AC", true);
    app.tree.addDeviceBattery("hid-mouse-battery", "Magic Mouse", 64);
    {
        auto suite = DefaultsSuite::open(SettingsManager::suiteName, app.x.configDir());
        suite->setObject(app.tree.root(), SystemBatteryTexts::rootConfigKey);
        suite->synchronize();
    }
    QProcessEnvironment env;
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", app.upower.address());
    ASSERT_TRUE(app.x.startApp(env));
    ASSERT_TRUE(XSession::waitFor([&] { return !app.x.windowsNamed("OmbrixWidget Control Panel").isEmpty(); }));

    // Every card is closed: the third switch knob in the panel's switch column is the battery's.
    QImage screen = app.panelShot("battery-app-panel");
    const QList<QRect> cardKnobs = sized(blobs(screen, QRect(840, 250, 66, 500), knobWhite), 14, 20);
    ASSERT_EQ(cardKnobs.size(), 4);
    click(app.x, cardKnobs[2].center());
    const QString widget = app.x.waitForWindow("OmbrixWidget battery");
    ASSERT_FALSE(widget.isEmpty());

    // Small: the computer's ring alone, red at 15 %, the bolt, and the orange glow of charging.
    EXPECT_TRUE(app.waitForArcs(widget, {Hue::Red}, "battery-app-small"));
    const QImage small = app.shot(widget);
    EXPECT_EQ(app.x.geometryOf(widget).size(), QSize(170, 170));
    EXPECT_GT(countPaint(small, QRect(95, 85, 30, 40), Hue::Yellow), 10);
    EXPECT_EQ(hueOf(small.pixelColor(85, 164)), Hue::Orange);

    // The card is open now: its click-through knob, then the size picker one row below it.
    screen = app.panelShot("battery-app-card-open");
    const QList<QRect> rowKnobs =
        sized(blobs(screen, QRect(840, cardKnobs[2].bottom() + 10, 66, 60), knobWhite), 14, 20);
    ASSERT_FALSE(rowKnobs.isEmpty());
    click(app.x, QPoint(800, rowKnobs.first().center().y() + 36));
    QThread::msleep(400);
    app.x.run("xdotool", {"key", "Up", "Return"});
    ASSERT_TRUE(XSession::waitFor([&] { return app.x.geometryOf(widget).width() == 340; }));

    // Medium: the computer, the headset and the mouse side by side.
    EXPECT_TRUE(app.waitForArcs(widget, {Hue::Red, Hue::Green, Hue::Green}, "battery-app-medium"));

    // "Magic Mouse" is the first box of the second row of device checkboxes, below the picker.
    screen = app.panelShot("battery-app-checkboxes");
    const QList<QRect> boxes =
        sized(blobs(screen, QRect(520, rowKnobs.first().bottom() + 60, 300, 140), accentBlue), 9, 16);
    ASSERT_EQ(boxes.size(), 4);
    EXPECT_NEAR(boxes[2].left(), boxes[0].left(), 2);
    EXPECT_GT(boxes[2].top(), boxes[0].bottom());
    click(app.x, boxes[2].center());

    // Hidden from the list in hand, well before the next 4-second reading.
    EXPECT_TRUE(app.waitForArcs(widget, {Hue::Red, Hue::Green}, "battery-app-no-mouse", 2000));
    EXPECT_TRUE(XSession::waitFor([&] {
        const auto list = DefaultsSuite::open(SettingsManager::suiteName, app.x.configDir())
                              ->stringArrayForKey("widget.battery.visibleDevices");
        return list && !list->contains("mouse") && list->contains("airpods");
    }));
    app.panelShot("battery-app-mouse-unticked");
}

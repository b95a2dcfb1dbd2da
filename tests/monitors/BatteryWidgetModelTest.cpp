#include "BatteryWidgetModel.h"
#include "BatteryFixtures.h"
#include "SettingsManager.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTimer>
#include <gtest/gtest.h>

namespace {

BatteryDevice device(const QString& type, qint64 percent, bool charging = false, const QString& name = {})
{
    const QString n = name.isEmpty() ? type : name;
    return {n.toLower(), n, percent, charging, type};
}

BatteryRing ring(const BatteryDevice& d, bool isSmall, const QString& label)
{
    return {d, isSmall, label};
}

const QStringList allCategories = {"macbook", "watch", "mouse", "airpods"};

// Puts the battery settings back after a test that changes them.
struct BatterySettingsScope {
    ~BatterySettingsScope()
    {
        SettingsManager::shared().setBatterySize("small");
        SettingsManager::shared().setBatteryVisibleDevices(allCategories);
    }
};

QJsonArray writtenBattery()
{
    QFile f(SettingsManager::sharedDataFilePath());
    if (!f.open(QIODevice::ReadOnly))
        return {};
    return QJsonDocument::fromJson(f.readAll()).object().value("battery").toArray();
}

} // namespace

TEST(BatteryWidgetRules, GlowFollowsTheFirstMacbook)
{
    struct Case {
        const char* what;
        QList<BatteryDevice> devices;
        QColor expected;
    };
    const QList<Case> cases = {
        {"no devices", {}, Qt::transparent},
        {"no macbook", {device("mouse", 5)}, Qt::transparent},
        {"20 not charging", {device("macbook", 20)}, BatteryWidgetModel::green()},
        {"20 charging", {device("macbook", 20, true)}, BatteryWidgetModel::green()},
        {"19 charging", {device("macbook", 19, true)}, BatteryWidgetModel::orange()},
        {"15 not charging", {device("macbook", 15)}, BatteryWidgetModel::red()},
        {"below zero", {device("macbook", -1)}, BatteryWidgetModel::red()},
        {"a low accessory ahead does not count",
         {device("mouse", 1), device("macbook", 90)},
         BatteryWidgetModel::green()},
        {"only the first macbook counts", {device("macbook", 10), device("macbook", 90)}, BatteryWidgetModel::red()},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(BatteryWidgetModel::glowColorFor(c.devices), c.expected);
    }
    EXPECT_EQ(BatteryWidgetModel::green(), QColor(52, 199, 89));
    EXPECT_EQ(BatteryWidgetModel::orange(), QColor(255, 149, 0));
    EXPECT_EQ(BatteryWidgetModel::red(), QColor(255, 59, 48));
}

TEST(BatteryWidgetRules, TypeTables)
{
    struct Case {
        QString type;
        QString category;
        QString icon;
    };
    const QList<Case> cases = {
        {"macbook", "macbook", "laptopcomputer"},
        {"watch", "watch", "applewatch"},
        {"mouse", "mouse", "mouse"},
        {"keyboard", "mouse", "keyboard"},
        {"trackpad", "mouse", "ipad.and.trackpad"},
        {"pencil", "mouse", "battery.100"},
        {"airpods", "airpods", "airpods"},
        {"accessory", "mouse", "battery.100"},
        {"Mouse", "mouse", "battery.100"},
        {"", "mouse", "battery.100"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.type.toStdString());
        EXPECT_EQ(BatteryWidgetModel::visibilityCategory(c.type), c.category);
        EXPECT_EQ(BatteryWidgetModel::iconNameFor(c.type), c.icon);
    }
}

TEST(BatteryWidgetRules, RingsToShow)
{
    const BatteryDevice mac = device("macbook", 85, true, "MacBook");
    const BatteryDevice mac2 = device("macbook", 40, false, "MacBook");
    const BatteryDevice watch = device("watch", 50, false, "Apple Watch");
    const BatteryDevice mouse = device("mouse", 64, false, "Magic Mouse");
    const BatteryDevice keyboard = device("keyboard", 70, false, "Magic Keyboard");
    const BatteryDevice trackpad = device("trackpad", 70, false, "Magic Trackpad");
    const BatteryDevice pencil = device("pencil", 70, false, "Apple Pencil");
    const BatteryDevice pad = device("accessory", 70, false, "Game Pad");
    const BatteryDevice pods = device("airpods", 30, false, "AirPods Pro");
    struct Case {
        const char* what;
        QList<BatteryDevice> devices;
        QString size;
        QStringList visible;
        QList<BatteryRing> expected;
    };
    const QList<Case> cases = {
        {"small: the macbook's large ring", {mouse, mac, mac2}, "small", allCategories, {ring(mac, true, "Mac di Bo")}},
        {"small ignores the visible list", {mac}, "small", {}, {ring(mac, true, "Mac di Bo")}},
        {"small without macbook is empty", {mouse, watch}, "small", allCategories, {}},
        {"medium: every category, labels",
         {mac, watch, pods},
         "medium",
         allCategories,
         {ring(mac, false, "Mac di Bo"), ring(watch, false, "Apple Watch"), ring(pods, false, "AirPods Pro")}},
        {"two macbooks both pass with the computer's name",
         {mac, mac2},
         "medium",
         allCategories,
         {ring(mac, false, "Mac di Bo"), ring(mac2, false, "Mac di Bo")}},
        {"without mouse: every input accessory and unknown type hidden",
         {mouse, keyboard, mac, trackpad, pencil, pad, watch, pods},
         "medium",
         {"macbook", "watch", "airpods"},
         {ring(mac, false, "Mac di Bo"), ring(watch, false, "Apple Watch"), ring(pods, false, "AirPods Pro")}},
        {"only mouse",
         {mac, keyboard, pods, pad},
         "medium",
         {"mouse"},
         {ring(keyboard, false, "Magic Keyboard"), ring(pad, false, "Game Pad")}},
        {"six visible: the first four",
         {mac, watch, mouse, keyboard, trackpad, pods},
         "medium",
         allCategories,
         {ring(mac, false, "Mac di Bo"), ring(watch, false, "Apple Watch"), ring(mouse, false, "Magic Mouse"),
          ring(keyboard, false, "Magic Keyboard")}},
        {"an unknown size gives the row",
         {mac, mouse},
         "large",
         allCategories,
         {ring(mac, false, "Mac di Bo"), ring(mouse, false, "Magic Mouse")}},
        {"the size test is exact", {mac}, "Small", allCategories, {ring(mac, false, "Mac di Bo")}},
        {"nothing visible", {mac, mouse}, "medium", {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(BatteryWidgetModel::ringsFor(c.devices, c.size, c.visible, "Mac di Bo"), c.expected);
    }
}

TEST(BatteryWidgetRules, RingTexts)
{
    struct Case {
        BatteryRing ring;
        QColor arc;
        QString status;
    };
    const QList<Case> cases = {
        {ring(device("macbook", 85, true), true, ""), BatteryWidgetModel::green(), "In carica"},
        {ring(device("macbook", 19, false), true, ""), BatteryWidgetModel::red(), "Alimentazione"},
        {ring(device("macbook", 20, true), false, ""), BatteryWidgetModel::green(), "20%"},
        {ring(device("mouse", 0, false), false, ""), BatteryWidgetModel::red(), "0%"},
        {ring(device("mouse", 100, false), false, ""), BatteryWidgetModel::green(), "100%"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.status.toStdString());
        EXPECT_EQ(BatteryWidgetModel::arcColor(c.ring.device.percent), c.arc);
        EXPECT_EQ(BatteryWidgetModel::statusText(c.ring), c.status);
    }
}

TEST(BatteryRingListModel, SameDevicesUpdateInPlace)
{
    BatteryRingListModel model;
    QSignalSpy resets(&model, &QAbstractItemModel::modelReset);
    QSignalSpy changes(&model, &QAbstractItemModel::dataChanged);
    const BatteryDevice mouse = device("mouse", 64, false, "Magic Mouse");

    model.setRings({ring(device("macbook", 50), false, "Mac"), ring(mouse, false, "Magic Mouse")});
    EXPECT_EQ(resets.count(), 1);
    model.setRings({ring(device("macbook", 49), false, "Mac"), ring(mouse, false, "Magic Mouse")});
    EXPECT_EQ(resets.count(), 1); // the rings stay, so they can animate
    ASSERT_EQ(changes.count(), 1);
    EXPECT_EQ(changes[0][0].toModelIndex().row(), 0);
    EXPECT_EQ(changes[0][1].toModelIndex().row(), 1);
    model.setRings({ring(mouse, false, "Magic Mouse")});
    EXPECT_EQ(resets.count(), 2);
    model.setRings({});
    EXPECT_EQ(resets.count(), 3);
    model.setRings({});
    EXPECT_EQ(changes.count(), 1);

    model.setRings({ring(device("macbook", 15, true), true, "Mac di Bo")});
    const QHash<int, QByteArray> roles = model.roleNames();
    const auto value = [&](const QByteArray& role) { return model.data(model.index(0), roles.key(role)); };
    EXPECT_EQ(model.rowCount(), 1);
    EXPECT_EQ(value("id"), "macbook");
    EXPECT_EQ(value("percent"), 15);
    EXPECT_EQ(value("charging"), true);
    EXPECT_EQ(value("isSmall"), true);
    EXPECT_EQ(value("customName"), "Mac di Bo");
    EXPECT_EQ(value("iconName"), "laptopcomputer");
    EXPECT_EQ(value("arcColor").value<QColor>(), BatteryWidgetModel::red());
    EXPECT_EQ(value("percentText"), "15%");
    EXPECT_EQ(value("statusText"), "In carica");
    EXPECT_FALSE(model.data(model.index(1), roles.key("id")).isValid());
}

TEST(BatteryWidgetModel, BecomingActiveRefreshesAndPublishes)
{
    FakeBatteryScope scope;
    BatterySettingsScope restore;
    scope.texts->pmset = "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t15%; discharging";
    scope.texts->ioreg = accessoryBlock("Magic Mouse", 64);
    scope.texts->name = "Mac di Bo";
    SettingsManager::shared().setBatterySize("medium");

    BatteryWidgetModel model;
    EXPECT_EQ(model.glowColor(), QColor(Qt::transparent));
    EXPECT_EQ(model.visibleRings()->rowCount(), 0);
    EXPECT_EQ(model.computerName(), "MacBook");
    EXPECT_EQ(scope.texts->pmsetCalls, 0);

    QSignalSpy glow(&model, &BatteryWidgetModel::glowColorChanged);
    model.setActive(true);
    EXPECT_EQ(scope.texts->pmsetCalls, 1);
    EXPECT_EQ(scope.texts->nameCalls, 1);
    EXPECT_EQ(model.computerName(), "Mac di Bo");
    EXPECT_EQ(model.glowColor(), BatteryWidgetModel::red());
    EXPECT_GE(glow.count(), 1);
    ASSERT_EQ(model.devices().size(), 2);
    EXPECT_EQ(model.devices()[1].toMap().value("name"), "Magic Mouse");
    const auto& rings = model.visibleRings()->rings();
    ASSERT_EQ(rings.size(), 2);
    EXPECT_EQ(rings[0].customName, "Mac di Bo");
    EXPECT_EQ(rings[1].customName, "Magic Mouse");

    // Published to the shared data and its file.
    ASSERT_TRUE(SettingsManager::shared().sharedData().battery);
    EXPECT_EQ(*SettingsManager::shared().sharedData().battery, model.deviceList());
    const QJsonArray written = writtenBattery();
    ASSERT_EQ(written.size(), 2);
    EXPECT_EQ(written[0].toObject().value("percent").toInt(), 15);
    EXPECT_EQ(written[1].toObject().value("id").toString(), "magic-mouse");

    // Active again while active: no second refresh.
    model.setActive(true);
    EXPECT_EQ(scope.texts->pmsetCalls, 1);

    // A poll that finds the same reading reads the texts and tells no one; a new reading does.
    QSignalSpy devices(&model, &BatteryWidgetModel::devicesChanged);
    model.refreshDevices();
    EXPECT_EQ(scope.texts->pmsetCalls, 2);
    EXPECT_EQ(devices.count(), 0);
    scope.texts->ioreg = accessoryBlock("Magic Mouse", 63);
    model.refreshDevices();
    EXPECT_EQ(devices.count(), 1);
}

TEST(BatteryWidgetModel, TimerRunsOnlyWhileActive)
{
    FakeBatteryScope scope;
    BatteryWidgetModel model;
    auto* timer = model.findChild<QTimer*>();
    ASSERT_NE(timer, nullptr);
    EXPECT_EQ(timer->interval(), 4000);
    EXPECT_EQ(timer->timerType(), Qt::PreciseTimer);
    EXPECT_FALSE(timer->isActive());

    model.setActive(true);
    EXPECT_TRUE(timer->isActive());
    scope.texts->pmset = "5%; charging";
    QMetaObject::invokeMethod(timer, "timeout");
    EXPECT_EQ(scope.texts->pmsetCalls, 2);
    EXPECT_EQ(scope.texts->nameCalls, 1); // the name is read on becoming active only
    EXPECT_EQ(model.glowColor(), BatteryWidgetModel::orange());

    model.setActive(false);
    EXPECT_FALSE(timer->isActive());
    model.setActive(true);
    EXPECT_EQ(scope.texts->pmsetCalls, 3);
    EXPECT_EQ(scope.texts->nameCalls, 2);
}

TEST(BatteryWidgetModel, SettingsRedrawFromTheListInHand)
{
    FakeBatteryScope scope;
    BatterySettingsScope restore;
    scope.texts->ioreg = accessoryBlock("Magic Mouse", 64) + accessoryBlock("AirPods", 30);
    BatteryWidgetModel model;
    model.setActive(true);
    const int asked = scope.texts->pmsetCalls;
    QSignalSpy small(&model, &BatteryWidgetModel::isSmallChanged);

    SettingsManager& settings = SettingsManager::shared();
    settings.setBatterySize("small");
    EXPECT_TRUE(model.isSmall());
    EXPECT_EQ(model.visibleRings()->rowCount(), 1);
    settings.setBatterySize("medium");
    EXPECT_FALSE(model.isSmall());
    EXPECT_EQ(model.visibleRings()->rowCount(), 3);
    EXPECT_EQ(small.count(), 2);
    settings.setBatteryVisibleDevices({"airpods"});
    ASSERT_EQ(model.visibleRings()->rowCount(), 1);
    EXPECT_EQ(model.visibleRings()->rings()[0].device.name, "AirPods");
    EXPECT_EQ(scope.texts->pmsetCalls, asked);
}

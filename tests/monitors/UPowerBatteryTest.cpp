// Batteries from UPower: python3-dbusmock's upower template on a private bus standing in for the
// system bus, read through the battery widget's model as the app reads it.
#include "BatteryFixtures.h"
#include "BatteryWidgetModel.h"
#include "FakePowerSupplyTree.h"
#include "SettingsManager.h"
#include "UPowerMock.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

class UPowerBattery : public ::testing::Test {
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(m_upower.isRunning()) << "dbusmock's upower did not start";
        SettingsManager::shared().setBatterySize("medium");
    }
    void TearDown() override
    {
        BatteryMonitor::shared().setTextSource(nullptr);
        SettingsManager::shared().setBatterySize("small");
    }

    // The model reads UPower on the private bus and the tree beside it; active, it has read once.
    void readWith(BatteryWidgetModel& model)
    {
        BatteryMonitor::shared().setTextSource(
            std::make_unique<SystemBatteryTexts>(m_tree.root(), m_upower.connection()));
        // The first reading starts asking UPower; the model refreshes when it has answered.
        QSignalSpy answered(&BatteryMonitor::shared().changes(), &ChangeNotifier::changed);
        model.setActive(true);
        ASSERT_TRUE(answered.wait(5000));
    }

    static QList<BatteryDevice> written()
    {
        QFile f(SettingsManager::sharedDataFilePath());
        const auto data = f.open(QIODevice::ReadOnly) ? SharedWidgetData::decode(f.readAll()) : std::nullopt;
        return data && data->battery ? *data->battery : QList<BatteryDevice>();
    }
    static QList<BatteryDevice> ringDevices(BatteryWidgetModel& model)
    {
        QList<BatteryDevice> devices;
        for (const BatteryRing& ring : model.visibleRings()->rings())
            devices << ring.device;
        return devices;
    }

    UPowerMock m_upower;
    FakePowerSupplyTree m_tree;
};

TEST_F(UPowerBattery, LaptopWithAHeadsetAndAMouse)
{
    m_upower.addSystemBattery("BAT0", 15, true);
    m_upower.addMains(true);
    m_upower.addPeripheral("AirPods Pro", 40, UPowerMock::headset, "/org/bluez/hci0/dev_AA_BB_CC_DD_EE_FF");
    const QString mouse = m_upower.addPeripheral("Wireless Mouse M185", 64, UPowerMock::mouse, "hidpp_battery_0");
    // The kernel's tree shows the laptop and the mouse too, and one keyboard UPower does not list.
    m_tree.addLaptopBattery("BAT0", 15, "Charging");
    m_tree.addDeviceBattery("hidpp_battery_0", "Wireless Mouse M185", 64);
    m_tree.addDeviceBattery("hid-11:22:33:44:55:66-battery", "K380 Keyboard", 90);

    BatteryWidgetModel model;
    readWith(model);
    const QList<BatteryDevice> expected = {
        {"macbook", "MacBook", 15, true, "macbook"},
        {"airpods-pro", "AirPods Pro", 40, false, "airpods"},
        {"wireless-mouse-m185", "Wireless Mouse M185", 64, false, "mouse"},
        {"k380-keyboard", "K380 Keyboard", 90, false, "keyboard"},
    };
    EXPECT_EQ(model.deviceList(), expected);
    EXPECT_EQ(ringDevices(model), expected);
    EXPECT_EQ(written(), expected);
    EXPECT_EQ(model.glowColor(), BatteryWidgetModel::orange());

    // A change UPower signals reaches the widget without waiting for its poll.
    m_upower.set(mouse, {{"Percentage", 12.0}});
    EXPECT_TRUE(QTest::qWaitFor([&] { return written().value(2).percent == 12; }, 3000));

    // UPower gone: the tree alone.
    m_upower.stop();
    EXPECT_TRUE(QTest::qWaitFor([&] { return written().size() == 3; }, 5000));
    EXPECT_FALSE(written().contains(expected[1]));
}

TEST_F(UPowerBattery, DesktopWithOnlyMains)
{
    m_upower.addMains(true);
    BatteryWidgetModel model;
    readWith(model);
    const QList<BatteryDevice> expected = {{"macbook", "MacBook", 100, true, "macbook"}};
    EXPECT_EQ(written(), expected);
    ASSERT_EQ(model.visibleRings()->rings().size(), 1);
    SettingsManager::shared().setBatterySize("small");
    EXPECT_EQ(BatteryWidgetModel::statusText(model.visibleRings()->rings().value(0)), "In carica");
}

TEST_F(UPowerBattery, NotChargingWithoutMainsIsNotCharging)
{
    m_upower.set(m_upower.addSystemBattery("BAT0", 80, false), {{"State", UPowerMock::pendingCharge}});
    m_upower.addMains(false);
    BatteryWidgetModel model;
    readWith(model);
    EXPECT_EQ(written(), QList<BatteryDevice>({{"macbook", "MacBook", 80, false, "macbook"}}));
    EXPECT_EQ(ringDevices(model), written());
}

} // namespace

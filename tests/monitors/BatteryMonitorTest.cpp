#include "BatteryMonitor.h"
#include "FakePowerSupplyTree.h"
#include "OutsideData.h"
#include "PowerSupplyTexts.h"
#include "UPowerMock.h"

#include <QDir>
#include <QSignalSpy>
#include <QTest>
#include <functional>
#include <gtest/gtest.h>

namespace {

BatteryDevice mac(qint64 percent, bool charging)
{
    return {"macbook", "MacBook", percent, charging, "macbook"};
}

BatteryDevice accessory(const QString& name, qint64 percent, const QString& type)
{
    return {name.toLower().replace(' ', '-'), name, percent, false, type};
}

// One ioreg block as macOS prints it; `keys` go between the braces.
QString block(const QString& header, const QString& keys)
{
    return "+-o " + header + "  <class " + header.section(' ', 0, 0) + ", id 0x1c10, registered>\n    {\n" + keys +
           "    }\n";
}

QString product(const QString& name, int percent)
{
    return block("AppleDeviceManagementHIDEventService",
                 QString("      \"BatteryPercent\" = %1\n      \"Product\" = \"%2\"\n").arg(percent).arg(name));
}

} // namespace

TEST(BatteryMonitor, TextsGiveTheMachineThenItsAccessories)
{
    const struct {
        const char* what;
        QString pmset, ioreg;
        QList<BatteryDevice> expected;
    } cases[] = {
        {"AC power is charging, whatever the state says",
         "Now drawing from 'AC Power'\n 40%; discharging",
         "",
         {mac(40, true)}},
        {"malformed output: a shell's error",
         "zsh: command not found: pmset",
         "zsh: command not found: ioreg",
         {mac(100, false)}},
        {"types from names, in table order",
         "5%",
         product("Magic Mouse", 64) + product("Keyboard and Trackpad", 1) + product("Trackpad", 2) +
             product("Headphones", 4) + product("Game Pad", 6),
         {mac(5, false), accessory("Magic Mouse", 64, "mouse"), accessory("Keyboard and Trackpad", 1, "keyboard"),
          accessory("Trackpad", 2, "trackpad"), accessory("Headphones", 4, "airpods"),
          accessory("Game Pad", 6, "accessory")}},
        {"no product: the header's name, unless it is a service class; CRLF lines",
         "",
         block("AppleDeviceManagementHIDEventService", "\"BatteryPercent\" = 9\n") +
             block("AppleBluetoothHIDDevice", "\"BatteryPercent\" = 9\n") +
             "+-o   Tastiera di Bo \t <class IOService, id 0x4>\r\n  \"BatteryPercent\" = 12\r\n",
         {mac(100, false), accessory("Tastiera di Bo", 12, "accessory")}},
        {"other name keys; unquoted values across lines; bad percents read 100; no percent, no device",
         "",
         block("X", "\"DeviceProduct\" = \"Primo\"\n\"BatteryPercent\" = \"x\"\n") +
             block("X", "BatteryPercent =\n 45\nBluetoothDeviceName=\n\"Cuffie\"\n") +
             block("X", "\"BatteryPercent\" = 99999999999999999999\n\"Product\" = \"Pad\"\n") +
             block("X", "\"Product\" = \"Senza\"\n") + block("X", "\"BatteryPercent\" = 4\n\"Product\" = \"Open\n"),
         {mac(100, false), accessory("Primo", 100, "accessory"), accessory("Cuffie", 45, "accessory"),
          accessory("Pad", 100, "accessory"), accessory("X", 4, "accessory")}},
        {"a name longer than a screen is cut",
         "",
         product(QString(5000, 'N'), 50),
         {mac(100, false), {QString(256, 'n'), QString(256, 'N'), 50, false, "accessory"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(BatteryMonitor::parseBatteryDevices(c.pmset, c.ioreg), c.expected);
    }
}

// A Linux power-supply tree read as the macOS tools would print it.
TEST(BatteryMonitor, TheTreeReadsAsTheTools)
{
    using T = FakePowerSupplyTree;
    const struct {
        const char* what;
        std::function<void(T&)> build;
        QList<BatteryDevice> expected;
    } cases[] = {
        {"charging on AC, a mouse beside",
         [](T& t) {
             t.addLaptopBattery("BAT0", 15, "Charging"), t.addMains("AC", true),
                 t.addDeviceBattery("hid-1", "Magic Mouse", 64);
         },
         {mac(15, true), accessory("Magic Mouse", 64, "mouse")}},
        {"\"Not charging\" on battery is discharging: an offline adapter does not count",
         [](T& t) { t.addMains("ADP1", false), t.addLaptopBattery("BAT0", 54, "Not charging"); },
         {mac(54, false)}},
        {"full on a USB-C supply",
         [](T& t) {
             t.addLaptopBattery("BAT1", 100, "Full"), t.addSupply("ucsi-psy", {{"type", "USB"}, {"online", "2"}});
         },
         {mac(100, true)}},
        {"two batteries combined by the energy they hold; one charging is charging",
         [](T& t) {
             t.addLaptopBattery("BAT0", 90, "Charging");
             t.addSupply("BAT0", {{"energy_now", "45000000"}, {"energy_full", "50000000"}});
             t.addLaptopBattery("BAT1", 30, "Discharging");
             t.addSupply("BAT1",
                         {{"charge_now", "1000000"}, {"charge_full", "2000000"}, {"voltage_min_design", "10000000"}});
         },
         {mac(79, true)}},
        {"mains without a battery; peripherals in name order, coarse levels, names made safe",
         [](T& t) {
             t.addMains("AC", true), t.addDeviceBattery("hid-b", "Pad \"Pro\"+-o\nX", 40);
             t.addSupply("hid-a",
                         {{"type", "Battery"}, {"scope", "Device"}, {"model_name", "Pen"}, {"capacity_level", "Low"}});
         },
         {mac(100, true), accessory("Pen", 10, "accessory"), accessory("Pad 'Pro'+- o X", 40, "accessory")}},
        {"garbage: no number, junk bytes, a folder for a file, a huge file",
         [](T& t) {
             t.addLaptopBattery("BAT0", 0, "Discharging"), t.writeRaw("BAT0", "capacity", "abc\n");
             t.writeRaw("AC", "type", "Mains\n"), t.writeRaw("AC", "online", "\x01\x02");
             t.addSupply("hid-1", {{"type", "Battery"}, {"scope", "Device"}, {"capacity", "5"}});
             QDir(t.root()).mkpath("hid-1/model_name");
             t.writeRaw("hid-2", "type", QByteArray("\xff\xfe\x00Battery", 10));
             t.addDeviceBattery("hid-3", "Keys", 0), t.writeRaw("hid-3", "capacity", "33" + QByteArray(1 << 20, ' '));
         },
         {mac(100, false), accessory("Keys", 33, "accessory")}},
        {"empty tree", [](T&) {}, {mac(100, true)}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        T tree;
        c.build(tree);
        EXPECT_EQ(BatteryMonitor::parseBatteryDevices(powersupply::pmsetText(tree.root()),
                                                      powersupply::ioregText(tree.root())),
                  c.expected);
    }
    EXPECT_EQ(BatteryMonitor::parseBatteryDevices(powersupply::pmsetText("/nonexistent"), ""), QList{mac(100, true)});
}

// dbusmock's UPower on a private bus standing in for the system bus, with a power-supply tree beside it.
TEST(BatteryMonitor, UPowerAndTheTree)
{
    using Build = std::function<QString(UPowerMock&, FakePowerSupplyTree&)>;
    const struct {
        const char* what;
        Build build; // gives the mouse's path, if any
        QList<BatteryDevice> expected;
    } cases[] = {
        {"not charging, off mains",
         [](UPowerMock& u, FakePowerSupplyTree&) {
             u.set(u.addSystemBattery("BAT0", 80, false), {{"State", UPowerMock::pendingCharge}});
             return u.addMains(false), QString();
         },
         {mac(80, false)}},
        {"mains without a battery",
         [](UPowerMock& u, FakePowerSupplyTree&) { return u.addMains(true), QString(); },
         {mac(100, true)}},
        {"a device both list is listed once (by name or address); the tree adds what UPower lacks",
         [](UPowerMock& u, FakePowerSupplyTree& t) {
             u.addSystemBattery("BAT0", 15, true), u.addMains(true);
             u.addPeripheral("AirPods Pro", 40, UPowerMock::headset, "/org/bluez/hci0/dev_AA_BB_CC_DD_EE_FF");
             t.addLaptopBattery("BAT0", 15, "Charging"), t.addDeviceBattery("hidpp_battery_0", "Wireless Mouse", 64);
             t.addDeviceBattery("hid-11:22:33:44:55:66-battery", "K380 Keyboard", 90);
             t.addDeviceBattery("hid-aa:bb:cc:dd:ee:ff-battery", "AirPods Pro", 41); // by its Bluetooth address
             return u.addPeripheral("Wireless Mouse", 64, UPowerMock::mouse, "hidpp_battery_0");
         },
         {mac(15, true), accessory("AirPods Pro", 40, "airpods"), accessory("Wireless Mouse", 64, "mouse"),
          accessory("K380 Keyboard", 90, "keyboard")}},
    };
    BatteryMonitor& monitor = BatteryMonitor::shared();
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FakePowerSupplyTree tree;
        UPowerMock upower;
        ASSERT_TRUE(upower.isRunning()) << "dbusmock's upower did not start";
        const QString mouse = c.build(upower, tree);
        monitor.setTextSource(std::make_unique<SystemBatteryTexts>(tree.root(), upower.connection()));
        QSignalSpy told(&monitor.changes(), &ChangeNotifier::changed);
        monitor.getBatteryDevices(); // starts asking UPower, which answers later
        ASSERT_TRUE(told.wait(5000));
        EXPECT_EQ(monitor.getBatteryDevices(), c.expected);
        if (!mouse.isEmpty()) { // a change UPower signals is told at once; UPower gone, the tree alone
            upower.set(mouse, {{"Percentage", 12.0}});
            EXPECT_TRUE(told.wait(5000));
            EXPECT_EQ(monitor.getBatteryDevices().value(2).percent, 12);
            upower.stop();
            const QList alone = {mac(15, true), accessory("K380 Keyboard", 90, "keyboard"),
                                 accessory("AirPods Pro", 41, "airpods"), accessory("Wireless Mouse", 64, "mouse")};
            EXPECT_TRUE(QTest::qWaitFor([&] { return monitor.getBatteryDevices() == alone; }, 5000));
        }
        monitor.setTextSource(nullptr);
    }
}

#include "PowerSupplyTexts.h"
#include "FakePowerSupplyTree.h"

#include <QDir>
#include <functional>
#include <gtest/gtest.h>

namespace {

using Build = std::function<void(FakePowerSupplyTree&)>;

const QString acOnly = "Now drawing from 'AC Power'\n";

// A tree and the text it should read as.
struct TreeCase {
    const char* what;
    Build build;
    QString expected;
};

} // namespace

TEST(PowerSupplyTexts, SystemBatteryReadsAsPmset)
{
    const QList<TreeCase> cases = {
        {"laptop at 15 % charging, AC online",
         [](auto& t) {
             t.addLaptopBattery("BAT0", 15, "Charging");
             t.addMains("AC", true);
         },
         "Now drawing from 'AC Power'\n -InternalBattery-0 (id=1)\t15%; charging; (no estimate) present: true\n"},
        {"on battery, discharging; the offline adapter does not count",
         [](auto& t) {
             t.addMains("ADP1", false);
             t.addLaptopBattery("BAT0", 54, "Discharging");
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t54%; discharging; (no estimate) present: "
         "true\n"},
        {"full on a USB-C supply",
         [](auto& t) {
             t.addLaptopBattery("BAT1", 100, "Full");
             t.addSupply("ucsi-source-psy-USBC000:001", {{"type", "USB"}, {"online", "2"}});
         },
         "Now drawing from 'AC Power'\n -InternalBattery-0 (id=1)\t100%; charged; (no estimate) present: true\n"},
        {"held below full on AC",
         [](auto& t) {
             t.addLaptopBattery("BAT0", 80, "Not charging");
             t.addMains("AC", true);
         },
         "Now drawing from 'AC Power'\n -InternalBattery-0 (id=1)\t80%; AC attached; not charging; (no estimate) "
         "present: true\n"},
        {"explicit System scope, unknown status on battery",
         [](auto& t) {
             t.addSupply("BAT0", {{"type", "Battery"}, {"scope", "System"}, {"capacity", "42"}, {"status", "Unknown"}});
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t42%; discharging; (no estimate) present: "
         "true\n"},
        {"two system batteries read as one, by the energy they hold; one charging is charging",
         [](auto& t) {
             t.addSupply("BAT0", {{"type", "Battery"},
                                  {"capacity", "90"},
                                  {"status", "Charging"},
                                  {"energy_now", "45000000"},
                                  {"energy_full", "50000000"}});
             t.addSupply("BAT1", {{"type", "Battery"},
                                  {"capacity", "30"},
                                  {"status", "Discharging"},
                                  {"charge_now", "1000000"},
                                  {"charge_full", "2000000"},
                                  {"voltage_min_design", "10000000"}});
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t79%; charging; (no estimate) present: true\n"},
        {"two without energy figures: the mean",
         [](auto& t) {
             t.addLaptopBattery("BAT1", 30, "Discharging");
             t.addLaptopBattery("BAT0", 91, "Discharging");
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t61%; discharging; (no estimate) present: "
         "true\n"},
        {"not charging with no mains is not charging",
         [](auto& t) {
             t.addLaptopBattery("BAT0", 80, "Not charging");
             t.addMains("AC", false);
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t80%; discharging; (no estimate) present: "
         "true\n"},
        // No battery: the machine runs on mains.
        {"a mouse alone is no system battery", [](auto& t) { t.addDeviceBattery("hid-mouse-battery", "Mouse", 64); },
         acOnly},
        {"no battery at all, AC online", [](auto& t) { t.addMains("AC", true); }, acOnly},
        {"empty tree", [](auto&) {}, acOnly},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FakePowerSupplyTree tree;
        c.build(tree);
        EXPECT_EQ(powersupply::pmsetText(tree.root()), c.expected);
    }
}

TEST(PowerSupplyTexts, GarbageGivesNoNumberAndNoCrash)
{
    const QList<TreeCase> cases = {
        {"capacity is not a number: no percent at all",
         [](auto& t) {
             t.addLaptopBattery("BAT0", 0, "Discharging");
             t.writeRaw("BAT0", "capacity", "abc\n");
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\tdischarging; (no estimate) present: true\n"},
        {"negative capacity",
         [](auto& t) {
             t.addLaptopBattery("BAT0", 0, "Charging");
             t.writeRaw("BAT0", "capacity", "-5\n");
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\tcharging; (no estimate) present: true\n"},
        {"capacity past 100 is held at 100", [](auto& t) { t.addLaptopBattery("BAT0", 250, "Charging"); },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t100%; charging; (no estimate) present: true\n"},
        {"binary junk in type and online",
         [](auto& t) {
             t.writeRaw("BAT0", "type", QByteArray("\xff\xfe\x00Battery", 10));
             t.writeRaw("AC", "type", "Mains\n");
             t.writeRaw("AC", "online", "\x01\x02");
         },
         acOnly},
        {"attribute that is a folder, and a stray file beside the supplies",
         [](auto& t) {
             t.addSupply("BAT0", {{"type", "Battery"}, {"capacity", "10"}});
             QDir(t.root()).mkpath("BAT0/status");
             t.writeRaw(".", "uevent", "junk");
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t10%; discharging; (no estimate) present: "
         "true\n"},
        {"a huge attribute is read only in part",
         [](auto& t) {
             t.addLaptopBattery("BAT0", 33, "Discharging");
             t.writeRaw("BAT0", "capacity", "33" + QByteArray(1 << 20, ' '));
         },
         "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t33%; discharging; (no estimate) present: "
         "true\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FakePowerSupplyTree tree;
        c.build(tree);
        EXPECT_EQ(powersupply::pmsetText(tree.root()), c.expected);
        EXPECT_EQ(powersupply::ioregText(tree.root()), QString());
    }
}

TEST(PowerSupplyTexts, MissingRootReadsAsMainsAlone)
{
    EXPECT_EQ(powersupply::pmsetText("/nonexistent/power_supply"), acOnly);
    EXPECT_EQ(powersupply::ioregText("/nonexistent/power_supply"), QString());
}

TEST(PowerSupplyTexts, DeviceBatteriesReadAsIoregBlocks)
{
    const auto block = [](int id, int percent, const QString& product) {
        QString text = QString("+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, "
                               "id 0x%1, registered, matched, active, busy 0 (0 ms), retain 7>\n    {\n"
                               "      \"BatteryPercent\" = %2\n")
                           .arg(id, 0, 16)
                           .arg(percent);
        if (!product.isEmpty())
            text += "      \"Product\" = \"" + product + "\"\n";
        return text + "    }\n\n";
    };
    const QList<TreeCase> cases = {
        {"a mouse at 64 % beside the laptop",
         [](auto& t) {
             t.addLaptopBattery("BAT0", 15, "Charging");
             t.addDeviceBattery("hid-d0:c0:50:aa:bb:cc-battery", "Magic Mouse", 64);
         },
         block(1, 64, "Magic Mouse")},
        {"headphones at 40 % and a keyboard, in name order",
         [](auto& t) {
             t.addDeviceBattery("hid-bb-battery", "Studio Headphones", 40);
             t.addDeviceBattery("hid-aa-battery", "MX Keys Keyboard", 90);
         },
         block(1, 90, "MX Keys Keyboard") + block(2, 40, "Studio Headphones")},
        {"coarse level only",
         [](auto& t) {
             t.addSupply("hid-1",
                         {{"type", "Battery"}, {"scope", "Device"}, {"model_name", "Pad"}, {"capacity_level", "Low"}});
             t.addSupply("hid-2",
                         {{"type", "Battery"}, {"scope", "Device"}, {"model_name", "Pen"}, {"capacity_level", "Full"}});
             t.addSupply(
                 "hid-3",
                 {{"type", "Battery"}, {"scope", "Device"}, {"model_name", "Old"}, {"capacity_level", "Unknown"}});
         },
         block(1, 10, "Pad") + block(2, 100, "Pen")},
        {"no model name: the block keeps only its header",
         [](auto& t) {
             t.addSupply("hid-1", {{"type", "Battery"}, {"scope", "Device"}, {"capacity", "77"}});
         },
         block(1, 77, "")},
        {"a name that would break the block is made safe",
         [](auto& t) { t.addDeviceBattery("hid-1", "Pad \"Pro\"+-o\nX", 5); }, block(1, 5, "Pad 'Pro'+- o X")},
        {"device scope that is not a battery, and a UPS",
         [](auto& t) {
             t.addSupply("hid-1", {{"type", "USB"}, {"scope", "Device"}, {"capacity", "50"}});
             t.addSupply("ups", {{"type", "UPS"}, {"capacity", "50"}, {"model_name", "Back-UPS"}});
         },
         ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        FakePowerSupplyTree tree;
        c.build(tree);
        EXPECT_EQ(powersupply::ioregText(tree.root()), c.expected);
    }
}

TEST(PowerSupplyTexts, ADeviceBothSourcesListIsListedOnce)
{
    using powersupply::Battery;
    const auto named = [](const QString& nativeName, const QString& model) { return Battery{nativeName, model, 50}; };
    powersupply::Reading upower{
        {named("BAT0", "")},
        {named("/org/bluez/hci0/dev_AA_BB_CC_DD_EE_0F", "AirPods"), named("hidpp_battery_0", "Mouse")},
        false};
    const powersupply::Reading tree{{named("BAT0", ""), named("BAT1", "")},
                                    {named("hid-aa:bb:cc:dd:ee:0f-battery", "AirPods"),
                                     named("/sys/class/power_supply/hidpp_battery_0", "Mouse"),
                                     named("hid-keyboard", "Keys")},
                                    true};
    const powersupply::Reading both = powersupply::merged(upower, tree);
    const auto names = [](const QList<Battery>& list) {
        QStringList out;
        for (const Battery& b : list)
            out << b.nativeName;
        return out;
    };
    EXPECT_EQ(names(both.system), QStringList({"BAT0", "BAT1"}));
    EXPECT_EQ(names(both.peripherals),
              QStringList({"/org/bluez/hci0/dev_AA_BB_CC_DD_EE_0F", "hidpp_battery_0", "hid-keyboard"}));
    EXPECT_TRUE(both.onMains);
}

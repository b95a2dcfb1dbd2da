#include "PowerSupplyTexts.h"
#include "FakePowerSupplyTree.h"

#include <QDir>
#include <functional>
#include <gtest/gtest.h>

namespace {

// pmset's text: the source line, then the battery line when `battery` is not empty.
QString pmset(bool ac, const QString& battery)
{
    const QString line = QString("Now drawing from '%1'\n").arg(ac ? "AC Power" : "Battery Power");
    return battery.isEmpty() ? line
                             : line + " -InternalBattery-0 (id=1)\t" + battery + "; (no estimate) present: true\n";
}

QString block(int id, int percent, const QString& product)
{
    return QString("+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, id 0x%1, "
                   "registered, matched, active, busy 0 (0 ms), retain 7>\n    {\n      \"BatteryPercent\" = %2\n")
               .arg(id)
               .arg(percent) +
           (product.isEmpty() ? "" : "      \"Product\" = \"" + product + "\"\n") + "    }\n\n";
}

} // namespace

TEST(PowerSupplyTexts, TreeReadsAsPmsetAndIoreg)
{
    using T = FakePowerSupplyTree;
    const struct {
        const char* what;
        std::function<void(T&)> build;
        QString pmset, ioreg;
    } cases[] = {
        {"charging on AC, a mouse beside",
         [](T& t) {
             t.addLaptopBattery("BAT0", 15, "Charging"), t.addMains("AC", true),
                 t.addDeviceBattery("hid-1", "Magic Mouse", 64);
         },
         pmset(true, "15%; charging"), block(1, 64, "Magic Mouse")},
        {"on battery; an offline adapter does not count",
         [](T& t) { t.addMains("ADP1", false), t.addLaptopBattery("BAT0", 54, "Discharging"); },
         pmset(false, "54%; discharging"), ""},
        {"full on a USB-C supply",
         [](T& t) {
             t.addLaptopBattery("BAT1", 100, "Full"), t.addSupply("ucsi-psy", {{"type", "USB"}, {"online", "2"}});
         },
         pmset(true, "100%; charged"), ""},
        {"held below full on AC", [](T& t) { t.addLaptopBattery("BAT0", 80, "Not charging"), t.addMains("AC", true); },
         pmset(true, "80%; AC attached; not charging"), ""},
        {"\"Not charging\" without mains is discharging",
         [](T& t) { t.addLaptopBattery("BAT0", 80, "Not charging"), t.addMains("AC", false); },
         pmset(false, "80%; discharging"), ""},
        {"two batteries combined by the energy they hold; one charging is charging",
         [](T& t) {
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
         pmset(false, "79%; charging"), ""},
        {"mains without a battery; peripherals in name order, coarse levels, names made safe",
         [](T& t) {
             t.addMains("AC", true), t.addDeviceBattery("hid-b", "Pad \"Pro\"+-o\nX", 40);
             t.addSupply("hid-a",
                         {{"type", "Battery"}, {"scope", "Device"}, {"model_name", "Pen"}, {"capacity_level", "Low"}});
         },
         pmset(true, ""), block(1, 10, "Pen") + block(2, 40, "Pad 'Pro'+- o X")},
        {"garbage: no number, junk bytes, a folder for a file, a huge file",
         [](T& t) {
             t.addLaptopBattery("BAT0", 0, "Discharging"), t.writeRaw("BAT0", "capacity", "abc\n");
             t.writeRaw("AC", "type", "Mains\n"), t.writeRaw("AC", "online", "\x01\x02");
             t.addSupply("hid-1", {{"type", "Battery"}, {"scope", "Device"}, {"capacity", "5"}});
             QDir(t.root()).mkpath("hid-1/model_name");
             t.writeRaw("hid-2", "type", QByteArray("\xff\xfe\x00Battery", 10));
             t.addDeviceBattery("hid-3", "Keys", 0), t.writeRaw("hid-3", "capacity", "33" + QByteArray(1 << 20, ' '));
         },
         pmset(false, "discharging"), block(1, 5, "") + block(2, 33, "Keys")},
        {"empty tree", [](T&) {}, pmset(true, ""), ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        T tree;
        c.build(tree);
        EXPECT_EQ(powersupply::pmsetText(tree.root()), c.pmset);
        EXPECT_EQ(powersupply::ioregText(tree.root()), c.ioreg);
    }
    EXPECT_EQ(powersupply::pmsetText("/nonexistent"), pmset(true, ""));
}

// The battery widget's costs: parsing a large ioreg text, and one whole 4 s refresh on Linux
// (power-supply tree rendered, parsed, stored and written to widget-data.json).
#include "BatteryMonitor.h"
#include "BatteryWidgetModel.h"
#include "FakePowerSupplyTree.h"

#include <QCoreApplication>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>

namespace {

// An accessory as a Mac lists it, with the keys the parser passes over.
QString ioregBlock(int i)
{
    return QString("+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService, id "
                   "0x1000%1, registered, matched, active, busy 0 (0 ms), retain 7>\n"
                   "    {\n"
                   "      \"LowBatteryNotificationPercentage\" = 2\n"
                   "      \"PrimaryUsagePage\" = 65280\n"
                   "      \"HasBattery\" = Yes\n"
                   "      \"VendorID\" = 76\n"
                   "      \"DeviceAddress\" = \"ac-49-db-00-11-%1\"\n"
                   "      \"Transport\" = \"Bluetooth\"\n"
                   "      \"ProductID\" = 666\n"
                   "      \"Product\" = \"Magic Mouse %1\"\n"
                   "      \"BatteryPercent\" = %2\n"
                   "      \"BatteryStatusFlags\" = 3\n"
                   "    }\n"
                   "    \n")
        .arg(i)
        .arg(i % 101);
}

void BM_Parse100Accessories(benchmark::State& state)
{
    const QString pmset = "Now drawing from 'AC Power'\n -InternalBattery-0 (id=1)\t87%; charging; 0:42 remaining\n";
    QString ioreg;
    for (int i = 0; i < 100; ++i)
        ioreg += ioregBlock(i);
    for (auto _ : state) {
        const auto devices = BatteryMonitor::parseBatteryDevices(pmset, ioreg);
        if (devices.size() != 101)
            state.SkipWithError("wrong parse");
        benchmark::DoNotOptimize(devices);
    }
    state.counters["text_KiB"] = double(ioreg.toUtf8().size()) / 1024;
}
BENCHMARK(BM_Parse100Accessories)->Unit(benchmark::kMicrosecond);

// The machine as a laptop on AC with three Bluetooth devices, read where pmset and ioreg are absent.
struct LinuxMachine {
    QTemporaryDir noTools;
    FakePowerSupplyTree tree;

    LinuxMachine()
    {
        qputenv("PATH", noTools.path().toUtf8());
        tree.addLaptopBattery("BAT0", 15, "Charging");
        tree.addMains("AC", true);
        tree.addDeviceBattery("hid-1-battery", "Wireless Mouse", 64);
        tree.addDeviceBattery("hid-2-battery", "Keyboard K380", 90);
        tree.addDeviceBattery("hid-3-battery", "Studio Headphones", 40);
        BatteryMonitor::shared().setTextSource(std::make_unique<SystemBatteryTexts>(tree.root()));
    }
    ~LinuxMachine() { BatteryMonitor::shared().setTextSource(nullptr); }
};

void BM_GetBatteryDevicesLinux(benchmark::State& state)
{
    LinuxMachine machine;
    for (auto _ : state) {
        const auto devices = BatteryMonitor::shared().getBatteryDevices();
        if (devices.size() != 4)
            state.SkipWithError("wrong devices");
        benchmark::DoNotOptimize(devices);
    }
}
BENCHMARK(BM_GetBatteryDevicesLinux)->Unit(benchmark::kMicrosecond);

void BM_RefreshDevicesLinux(benchmark::State& state)
{
    LinuxMachine machine;
    BatteryWidgetModel model;
    for (auto _ : state) {
        model.refreshDevices();
        if (model.deviceList().size() != 4)
            state.SkipWithError("wrong devices");
    }
}
BENCHMARK(BM_RefreshDevicesLinux)->Unit(benchmark::kMicrosecond);

} // namespace

int main(int argc, char** argv)
{
    // Settings and widget-data.json go to a throwaway home.
    QTemporaryDir home;
    qputenv("HOME", home.path().toUtf8());
    qputenv("XDG_CONFIG_HOME", (home.path() + "/.config").toUtf8());
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

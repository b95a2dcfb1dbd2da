#pragma once
// Batteries as UPower or the kernel's power-supply tree report them, rendered as the text of
// `pmset -g batt` and of `ioreg -r -d 1 -k "BatteryPercent"`, so one parser reads batteries on
// machines without those tools.
#include <QList>
#include <QString>
#include <optional>

namespace powersupply {

inline constexpr const char* defaultRoot = "/sys/class/power_supply";

enum class Status { Unknown, Charging, Discharging, Full, NotCharging };

struct Battery {
    QString nativeName; // the kernel's or the Bluetooth stack's name of the device, to match it by
    QString model;      // a peripheral is listed under it
    std::optional<int> percent;
    double energy = 0; // now and when full, in one unit per source; 0 when unknown
    double energyFull = 0;
    Status status = Status::Unknown;
};

struct Reading {
    QList<Battery> system;      // the machine's own batteries
    QList<Battery> peripherals; // mice, keyboards, headsets, pads...
    bool onMains = false;
};

// One folder per supply under `root`, as the kernel lays them out.
Reading readTree(const QString& root = defaultRoot);

// `primary` plus the devices of `extra` that it does not list already (same native name, or the
// same Bluetooth address); on mains if either says so.
Reading merged(Reading primary, const Reading& extra);

// The power source line, then one line for the system batteries, combined by energy as UPower's
// display device does. With no system battery the machine runs on mains: the "AC Power" line alone.
QString pmsetText(const Reading& reading);
// Every peripheral with a level as one ioreg block with a "+-o" header, "BatteryPercent" and,
// when it has a model name, "Product".
QString ioregText(const Reading& reading);

inline QString pmsetText(const QString& root = defaultRoot)
{
    return pmsetText(readTree(root));
}
inline QString ioregText(const QString& root = defaultRoot)
{
    return ioregText(readTree(root));
}

} // namespace powersupply

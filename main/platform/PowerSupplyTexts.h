#pragma once
// The kernel's power-supply tree rendered as the text of `pmset -g batt` and of
// `ioreg -r -d 1 -k "BatteryPercent"`, so one parser reads batteries on machines without those tools.
#include <QString>

namespace powersupply {

inline constexpr const char* defaultRoot = "/sys/class/power_supply";

// The system battery (type Battery, scope absent or System) as pmset prints it: the power source
// line, then one line per battery. Empty when the machine has no such battery.
QString pmsetText(const QString& root = defaultRoot);

// Every device-scope battery (mice, keyboards, headsets, game pads) as one ioreg block with a
// "+-o" header, "BatteryPercent" and, when the device names itself, "Product". A device that
// reports no level is left out.
QString ioregText(const QString& root = defaultRoot);

} // namespace powersupply

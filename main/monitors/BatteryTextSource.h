#pragma once
// Where BatteryMonitor's texts come from. The machine's own source is below; tests hand the
// monitor a fake.
#include "PowerSupplyTexts.h"

#include <QString>

class BatteryTextSource {
public:
    virtual ~BatteryTextSource() = default;
    virtual QString pmsetText() = 0;    // the text of `pmset -g batt`
    virtual QString ioregText() = 0;    // the text of `ioreg -r -d 1 -k "BatteryPercent"`
    virtual QString computerName() = 0; // empty when nothing knows it
};

// Each call asks the machine what it has: pmset, ioreg and scutil where they are installed,
// otherwise the kernel's power-supply tree under `powerSupplyRoot` and the host name.
class SystemBatteryTexts : public BatteryTextSource {
public:
    explicit SystemBatteryTexts(QString powerSupplyRoot = powersupply::defaultRoot);

    QString pmsetText() override;
    QString ioregText() override;
    QString computerName() override;

private:
    QString m_root;
};

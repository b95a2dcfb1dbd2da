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
// otherwise a power-supply tree and the host name. The tree is `powerSupplyRoot` when given, else
// the one the settings name under `rootConfigKey` (whole-app tests), else the kernel's.
class SystemBatteryTexts : public BatteryTextSource {
public:
    static constexpr const char* rootConfigKey = "platform.powersupply.root";

    explicit SystemBatteryTexts(QString powerSupplyRoot = {});

    QString pmsetText() override;
    QString ioregText() override;
    QString computerName() override;

private:
    QString root() const;

    QString m_root;
};

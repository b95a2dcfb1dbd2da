#pragma once
// Where BatteryMonitor's texts come from. The machine's own source is below; tests hand the
// monitor a fake.
#include "PowerSupplyTexts.h"

#include <QDBusConnection>
#include <QPointer>
#include <QString>
#include <functional>
#include <optional>
#include <utility>

class UPowerDevices;

class BatteryTextSource {
  public:
    virtual ~BatteryTextSource() = default;
    virtual QString pmsetText() = 0;    // the text of `pmset -g batt`
    virtual QString ioregText() = 0;    // the text of `ioreg -r -d 1 -k "BatteryPercent"`
    virtual QString computerName() = 0; // empty when nothing knows it
    // Both texts of one reading, pmset's first.
    virtual std::pair<QString, QString> texts()
    {
        QString pmset = pmsetText();
        return {std::move(pmset), ioregText()};
    }
    // Called when the source learns of a change by itself, between polls.
    virtual void setChangeHandler(std::function<void()> onChange) { (void)onChange; }
};

// Each call asks the machine what it has: pmset, ioreg and scutil where they are installed,
// otherwise UPower's devices with those of a power-supply tree that UPower does not list (the tree
// alone while UPower is absent or has not answered yet), and the host name. The tree is
// `powerSupplyRoot` when given, else the one the settings name under `rootConfigKey` (whole-app
// tests), else the kernel's. UPower is asked on `upowerBus`, by default the system bus.
class SystemBatteryTexts : public BatteryTextSource {
  public:
    static constexpr const char* rootConfigKey = "platform.powersupply.root";

    explicit SystemBatteryTexts(QString powerSupplyRoot = {}, std::optional<QDBusConnection> upowerBus = std::nullopt);
    ~SystemBatteryTexts() override;

    QString pmsetText() override;
    QString ioregText() override;
    // Where neither tool is installed, both texts are rendered from one reading of the machine.
    std::pair<QString, QString> texts() override;
    QString computerName() override;
    void setChangeHandler(std::function<void()> onChange) override;

  private:
    QString root() const;
    powersupply::Reading reading();

    QString m_root;
    std::optional<bool> m_hasPmset, m_hasIoreg;
    std::optional<QDBusConnection> m_upowerBus;
    // Made at the first reading, on the thread with the event loop; owned by the application so
    // that it goes before the bus connection does.
    QPointer<UPowerDevices> m_upower;
    std::function<void()> m_onChange;
};

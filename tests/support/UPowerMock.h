#pragma once
// python3-dbusmock's upower template on a private bus that stands in for the system bus: point
// DBUS_SYSTEM_BUS_ADDRESS at address(), or read it through connection().
#include "PrivateBus.h"

#include <QProcess>
#include <QVariantMap>

class UPowerMock {
  public:
    // UPower's device types and states as upowerd reports them.
    static constexpr uint linePower = 1, mouse = 5, headset = 17;
    static constexpr uint pendingCharge = 5;

    UPowerMock();
    ~UPowerMock();

    bool isRunning() const { return m_running; }
    QString address() const { return m_bus.address(); }
    QDBusConnection connection() const { return m_bus.connection(); }
    void stop();

    // A method of the mock's control interface on `path`; its text reply (a new device's path, for one).
    QString call(const QString& method, const QVariantList& args, const QString& path = "/org/freedesktop/UPower");
    void addProperty(const QString& path, const QString& name, const QVariant& value);
    void set(const QString& path, const QVariantMap& properties);
    // A battery at `percent` that is the machine's own, charging or discharging.
    QString addSystemBattery(const QString& nativeName, double percent, bool charging);
    // A battery that is no power supply of the machine: what BlueZ and the HID++ driver report.
    QString addPeripheral(const QString& model, double percent, uint type, const QString& nativePath);
    void addMains(bool online);

  private:
    PrivateBus m_bus;
    QProcess m_mock;
    bool m_running = false;
    int m_devices = 0;
};

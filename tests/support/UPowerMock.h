#pragma once
// python3-dbusmock's upower template on a private bus that stands in for the system bus: point
// DBUS_SYSTEM_BUS_ADDRESS at address(), or read it through connection().
#include "PrivateBus.h"

#include <QVariantMap>

class UPowerMock {
  public:
    // UPower's device types and states as upowerd reports them.
    static constexpr uint linePower = 1, mouse = 5, headset = 17;
    static constexpr uint pendingCharge = 5;

    UPowerMock();
    ~UPowerMock() { stop(); }

    bool isRunning() const { return m_running; }
    QString address() const { return m_bus.address(); }
    QDBusConnection connection() const { return m_bus.connection(); }
    void stop();

    void set(const QString& path, const QVariantMap& properties);
    // Each gives the new device's path. A battery that is the machine's own, charging or not:
    QString addSystemBattery(const QString& nativeName, double percent, bool charging);
    // A battery that is no power supply of the machine: what BlueZ and the HID++ driver report.
    QString addPeripheral(const QString& model, double percent, uint type, const QString& nativePath);
    QString addMains(bool online);

  private:
    // A method of the mock's control interface on `path`; its text reply.
    QString call(const QString& method, const QVariantList& args, const QString& path = "/org/freedesktop/UPower");
    // The template's devices lack a few properties upowerd gives every device.
    QString added(const QString& path, const QString& property, const QVariant& value);

    PrivateBus m_bus;
    QProcess m_mock;
    bool m_running = false;
    int m_devices = 0;
};

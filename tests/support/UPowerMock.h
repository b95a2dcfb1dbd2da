#pragma once
// python3-dbusmock's upower template on a private bus that stands in for the system bus: point
// DBUS_SYSTEM_BUS_ADDRESS at address(), or read it through connection().
#include "PrivateBus.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QProcessEnvironment>

class UPowerMock {
  public:
    // UPower's device types and states as upowerd reports them.
    static constexpr uint linePower = 1, mouse = 5, headset = 17;
    static constexpr uint pendingCharge = 5;

    UPowerMock()
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address());
        m_mock.setProcessEnvironment(env);
        m_mock.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        // Debian's own interpreter, which has the dbusmock module.
        m_mock.start("/usr/bin/python3", {"-m", "dbusmock", "--template", "upower"});
        m_running = m_bus.isRunning() && m_mock.waitForStarted() && m_bus.waitForName("org.freedesktop.UPower");
    }
    ~UPowerMock() { stop(); }

    bool isRunning() const { return m_running; }
    QString address() const { return m_bus.address(); }
    QDBusConnection connection() const { return m_bus.connection(); }
    void stop()
    {
        m_mock.kill();
        m_mock.waitForFinished();
        m_running = false;
    }

    void set(const QString& path, const QVariantMap& properties)
    {
        call("SetDeviceProperties", {QVariant::fromValue(QDBusObjectPath(path)), properties});
    }
    // Each gives the new device's path. A battery that is the machine's own, charging or not:
    QString addSystemBattery(const QString& nativeName, double percent, bool charging)
    {
        return added(call(charging ? "AddChargingBattery" : "AddDischargingBattery",
                          {"battery_" + nativeName, "Battery", percent, qlonglong(3600)}),
                     "NativePath", nativeName);
    }
    // A battery that is no power supply of the machine: what BlueZ and the HID++ driver report.
    QString addPeripheral(const QString& model, double percent, uint type, const QString& nativePath)
    {
        const QString path = added(
            call("AddDischargingBattery", {QString("peripheral_%1").arg(++m_devices), model, percent, qlonglong(0)}),
            "NativePath", nativePath);
        set(path, {{"Type", type}, {"PowerSupply", false}});
        return path;
    }
    QString addMains(bool online)
    {
        const QString path = added(call("AddAC", {"line_power_AC", "Mains"}), "Type", linePower);
        set(path, {{"Online", online}});
        return path;
    }

  private:
    // A method of the mock's control interface on `path`; its text reply.
    QString call(const QString& method, const QVariantList& args, const QString& path = "/org/freedesktop/UPower")
    {
        QDBusMessage message =
            QDBusMessage::createMethodCall("org.freedesktop.UPower", path, "org.freedesktop.DBus.Mock", method);
        message.setArguments(args);
        const QDBusMessage reply = m_bus.connection().call(message);
        if (reply.type() != QDBusMessage::ReplyMessage)
            qWarning("%s: %s", qPrintable(method), qPrintable(reply.errorMessage()));
        return reply.arguments().value(0).toString();
    }
    // The template's devices lack a few properties upowerd gives every device.
    QString added(const QString& path, const QString& property, const QVariant& value)
    {
        call("AddProperty", {"org.freedesktop.UPower.Device", property, QVariant::fromValue(QDBusVariant(value))},
             path);
        return path;
    }

    PrivateBus m_bus;
    QProcess m_mock;
    bool m_running = false;
    int m_devices = 0;
};

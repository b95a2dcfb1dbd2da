#include "UPowerMock.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QProcessEnvironment>

UPowerMock::UPowerMock()
{
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address());
    m_mock.setProcessEnvironment(env);
    m_mock.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // Debian's own interpreter, which has the dbusmock module.
    m_mock.start("/usr/bin/python3", {"-m", "dbusmock", "--template", "upower"});
    m_running = m_bus.isRunning() && m_mock.waitForStarted() && m_bus.waitForName("org.freedesktop.UPower", true);
}

void UPowerMock::stop()
{
    if (m_mock.state() != QProcess::NotRunning) {
        m_mock.kill();
        m_mock.waitForFinished();
    }
    m_running = false;
}

QString UPowerMock::call(const QString& method, const QVariantList& args, const QString& path)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall("org.freedesktop.UPower", path, "org.freedesktop.DBus.Mock", method);
    message.setArguments(args);
    const QDBusMessage reply = m_bus.connection().call(message);
    if (reply.type() != QDBusMessage::ReplyMessage)
        qWarning("%s: %s", qPrintable(method), qPrintable(reply.errorMessage()));
    return reply.arguments().value(0).toString();
}

void UPowerMock::set(const QString& path, const QVariantMap& properties)
{
    call("SetDeviceProperties", {QVariant::fromValue(QDBusObjectPath(path)), properties});
}

QString UPowerMock::added(const QString& path, const QString& property, const QVariant& value)
{
    call("AddProperty", {"org.freedesktop.UPower.Device", property, QVariant::fromValue(QDBusVariant(value))}, path);
    return path;
}

QString UPowerMock::addSystemBattery(const QString& nativeName, double percent, bool charging)
{
    return added(call(charging ? "AddChargingBattery" : "AddDischargingBattery",
                      {"battery_" + nativeName, "Battery", percent, qlonglong(3600)}),
                 "NativePath", nativeName);
}

QString UPowerMock::addPeripheral(const QString& model, double percent, uint type, const QString& nativePath)
{
    const QString path =
        added(call("AddDischargingBattery", {QString("peripheral_%1").arg(++m_devices), model, percent, qlonglong(0)}),
              "NativePath", nativePath);
    set(path, {{"Type", type}, {"PowerSupply", false}});
    return path;
}

QString UPowerMock::addMains(bool online)
{
    const QString path = added(call("AddAC", {"line_power_AC", "Mains"}), "Type", linePower);
    set(path, {{"Online", online}});
    return path;
}

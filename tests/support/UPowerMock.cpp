#include "UPowerMock.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusVariant>
#include <QProcessEnvironment>

namespace {
const QString service = QStringLiteral("org.freedesktop.UPower");
} // namespace

UPowerMock::UPowerMock()
{
    if (!m_bus.isRunning())
        return;
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", m_bus.address());
    m_mock.setProcessEnvironment(env);
    m_mock.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    // Debian's own interpreter, which has the dbusmock module.
    m_mock.start("/usr/bin/python3", {"-m", "dbusmock", "--template", "upower"});
    m_running = m_mock.waitForStarted() && m_bus.waitForName(service, true);
}

UPowerMock::~UPowerMock()
{
    stop();
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
    QDBusMessage message = QDBusMessage::createMethodCall(service, path, "org.freedesktop.DBus.Mock", method);
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

void UPowerMock::addProperty(const QString& path, const QString& name, const QVariant& value)
{
    call("AddProperty", {"org.freedesktop.UPower.Device", name, QVariant::fromValue(QDBusVariant(value))}, path);
}

// The template's devices lack a few properties upowerd gives every device; they are added here.
QString UPowerMock::addSystemBattery(const QString& nativeName, double percent, bool charging)
{
    const QString path = call(charging ? "AddChargingBattery" : "AddDischargingBattery",
                              {"battery_" + nativeName, "Battery", percent, qlonglong(3600)});
    addProperty(path, "NativePath", nativeName);
    return path;
}

QString UPowerMock::addPeripheral(const QString& model, double percent, uint type, const QString& nativePath)
{
    const QString path =
        call("AddDischargingBattery", {QString("peripheral_%1").arg(++m_devices), model, percent, qlonglong(0)});
    addProperty(path, "NativePath", nativePath);
    set(path, {{"Type", type}, {"PowerSupply", false}});
    return path;
}

void UPowerMock::addMains(bool online)
{
    const QString path = call("AddAC", {"line_power_AC", "Mains"});
    addProperty(path, "Type", linePower);
    set(path, {{"Online", online}});
}

#include "UPowerMock.h"

#include <QDBusObjectPath>
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

QString UPowerMock::call(const QString& method, const QVariantList& args)
{
    QDBusMessage message =
        QDBusMessage::createMethodCall(service, "/org/freedesktop/UPower", "org.freedesktop.DBus.Mock", method);
    message.setArguments(args);
    return m_bus.connection().call(message).arguments().value(0).toString();
}

void UPowerMock::set(const QString& path, const QVariantMap& properties)
{
    call("SetDeviceProperties", {QVariant::fromValue(QDBusObjectPath(path)), properties});
}

QString UPowerMock::addSystemBattery(const QString& nativeName, double percent, bool charging)
{
    const QString path = call(charging ? "AddChargingBattery" : "AddDischargingBattery",
                              {"battery_" + nativeName, "Battery", percent, qlonglong(3600)});
    set(path, {{"NativePath", nativeName}});
    return path;
}

QString UPowerMock::addPeripheral(const QString& model, double percent, uint type, const QString& nativePath)
{
    const QString path =
        call("AddDischargingBattery", {QString("peripheral_%1").arg(++m_devices), model, percent, qlonglong(0)});
    set(path, {{"Type", type}, {"PowerSupply", false}, {"NativePath", nativePath}});
    return path;
}

void UPowerMock::addMains(bool online)
{
    set(call("AddAC", {"line_power_AC", "Mains"}), {{"Type", linePower}, {"Online", online}});
}

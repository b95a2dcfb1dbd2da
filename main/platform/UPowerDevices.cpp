#include "UPowerDevices.h"

#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <algorithm>
#include <memory>

namespace {

const QString managerPath = QStringLiteral("/org/freedesktop/UPower");
const QString managerInterface = QStringLiteral("org.freedesktop.UPower");
const QString deviceInterface = QStringLiteral("org.freedesktop.UPower.Device");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

// UPower's device types and states that matter here.
enum : uint { LinePower = 1, BatteryType = 2 };
enum : uint { Charging = 1, Discharging = 2, Empty = 3, FullyCharged = 4, PendingCharge = 5, PendingDischarge = 6 };

powersupply::Status statusOf(uint state)
{
    switch (state) {
    case Charging:
        return powersupply::Status::Charging;
    case Discharging:
    case Empty:
    case PendingDischarge:
        return powersupply::Status::Discharging;
    case FullyCharged:
        return powersupply::Status::Full;
    case PendingCharge: // the kernel's "Not charging"
        return powersupply::Status::NotCharging;
    default:
        return powersupply::Status::Unknown;
    }
}

} // namespace

UPowerDevices::UPowerDevices(const QDBusConnection& bus, QObject* parent) : QObject(parent), m_bus(bus)
{
    if (!m_bus.isConnected())
        return;
    auto* watcher = new QDBusServiceWatcher(service, m_bus, QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString&, const QString&, const QString& owner) {
                if (owner.isEmpty())
                    forget();
                else
                    enumerate();
            });
    m_bus.connect(service, managerPath, managerInterface, QStringLiteral("DeviceAdded"), this, SLOT(enumerate()));
    m_bus.connect(service, managerPath, managerInterface, QStringLiteral("DeviceRemoved"), this, SLOT(enumerate()));
    m_bus.connect(service, QString(), propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                  SLOT(devicePropertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)));
    enumerate();
}

powersupply::Reading UPowerDevices::reading() const
{
    powersupply::Reading reading;
    for (const QVariantMap& properties : m_devices)
        addDevice(reading, properties);
    // The hash has no order of its own; listing the peripherals by name keeps the rings still.
    const auto byName = [](const powersupply::Battery& a, const powersupply::Battery& b) {
        return a.nativeName < b.nativeName;
    };
    std::sort(reading.peripherals.begin(), reading.peripherals.end(), byName);
    std::sort(reading.system.begin(), reading.system.end(), byName);
    return reading;
}

void UPowerDevices::addDevice(powersupply::Reading& reading, const QVariantMap& properties)
{
    const uint type = properties.value(QStringLiteral("Type")).toUInt();
    if (type == LinePower) {
        reading.onMains = reading.onMains || properties.value(QStringLiteral("Online")).toBool();
        return;
    }
    if (!properties.value(QStringLiteral("IsPresent")).toBool())
        return;
    powersupply::Battery battery;
    battery.nativeName = properties.value(QStringLiteral("NativePath")).toString();
    battery.model = properties.value(QStringLiteral("Model")).toString().trimmed();
    if (battery.model.isEmpty())
        battery.model = properties.value(QStringLiteral("Vendor")).toString().trimmed();
    bool ok = false;
    const double percent = properties.value(QStringLiteral("Percentage")).toDouble(&ok);
    if (ok)
        battery.percent = qRound(qBound(0.0, percent, 100.0));
    battery.energy = properties.value(QStringLiteral("Energy")).toDouble();
    battery.energyFull = properties.value(QStringLiteral("EnergyFull")).toDouble();
    battery.status = statusOf(properties.value(QStringLiteral("State")).toUInt());
    if (type == BatteryType && properties.value(QStringLiteral("PowerSupply")).toBool())
        reading.system.append(battery);
    else
        reading.peripherals.append(battery);
}

void UPowerDevices::enumerate()
{
    const quint64 generation = ++m_generation;
    auto* pending =
        new QDBusPendingCallWatcher(m_bus.asyncCall(QDBusMessage::createMethodCall(
                                        service, managerPath, managerInterface, QStringLiteral("EnumerateDevices"))),
                                    this);
    connect(pending, &QDBusPendingCallWatcher::finished, this, [this, generation](QDBusPendingCallWatcher* call) {
        call->deleteLater();
        const QDBusPendingReply<QList<QDBusObjectPath>> reply = *call;
        if (generation != m_generation)
            return;
        if (reply.isError()) {
            forget();
            return;
        }
        // The list is taken whole once every device has answered (or failed to).
        auto devices = std::make_shared<QHash<QString, QVariantMap>>();
        auto waiting = std::make_shared<int>(int(reply.value().size()));
        const auto done = [this, generation, devices] {
            if (generation != m_generation)
                return;
            m_devices = *devices;
            m_ready = true;
            emit changed();
        };
        if (*waiting == 0)
            done();
        for (const QDBusObjectPath& path : reply.value()) {
            QDBusMessage getAll =
                QDBusMessage::createMethodCall(service, path.path(), propertiesInterface, QStringLiteral("GetAll"));
            getAll << deviceInterface;
            auto* device = new QDBusPendingCallWatcher(m_bus.asyncCall(getAll), this);
            connect(device, &QDBusPendingCallWatcher::finished, this,
                    [path = path.path(), devices, waiting, done](QDBusPendingCallWatcher* deviceCall) {
                        deviceCall->deleteLater();
                        const QDBusPendingReply<QVariantMap> properties = *deviceCall;
                        if (!properties.isError())
                            devices->insert(path, properties.value());
                        if (--*waiting == 0)
                            done();
                    });
        }
    });
}

void UPowerDevices::devicePropertiesChanged(const QString& interface, const QVariantMap& changedProperties,
                                            const QStringList& invalidated, const QDBusMessage& message)
{
    const auto device = m_devices.find(message.path());
    if (interface != deviceInterface || device == m_devices.end())
        return;
    // UPower also reports times, rates and update stamps every few seconds; only what a reading
    // shows is worth a refresh.
    static const QStringList shown = {"Type",   "Online",     "IsPresent", "PowerSupply", "NativePath", "Model",
                                      "Vendor", "Percentage", "Energy",    "EnergyFull",  "State"};
    bool matters = false;
    for (auto it = changedProperties.begin(); it != changedProperties.end(); ++it) {
        matters = matters || (shown.contains(it.key()) && device->value(it.key()) != it.value());
        device->insert(it.key(), it.value());
    }
    for (const QString& name : invalidated)
        matters = device->remove(name) > 0 || matters;
    if (matters)
        emit changed();
}

void UPowerDevices::forget()
{
    ++m_generation;
    const bool had = m_ready;
    m_ready = false;
    m_devices.clear();
    if (had)
        emit changed();
}

#pragma once
// UPower's devices on the system bus, kept as battery applets keep them: one EnumerateDevices and
// one GetAll per device when UPower appears or adds a device, then PropertiesChanged signals.
// Every call is asynchronous, so a hung UPower costs no frame; reading() never touches the bus.
#include "PowerSupplyTexts.h"

#include <QDBusConnection>
#include <QHash>
#include <QObject>
#include <QVariantMap>

class QDBusPendingCallWatcher;

class UPowerDevices : public QObject {
    Q_OBJECT

  public:
    static inline const QString service = QStringLiteral("org.freedesktop.UPower");

    // Starts asking at once; replies arrive through the event loop.
    explicit UPowerDevices(const QDBusConnection& bus, QObject* parent = nullptr);

    // Whether UPower has given its device list; until then, and once it is gone, it knows nothing.
    bool ready() const { return m_ready; }
    powersupply::Reading reading() const;

    // One device's properties added to a reading: line power sets the mains, a power-supply
    // battery is the machine's own, any other battery-holding device a peripheral.
    static void addDevice(powersupply::Reading& reading, const QVariantMap& properties);

  signals:
    void changed();

  private slots:
    void enumerate();
    void devicePropertiesChanged(const QString& interface, const QVariantMap& changedProperties,
                                 const QStringList& invalidated, const QDBusMessage& message);

  private:
    void forget();

    QDBusConnection m_bus;
    QHash<QString, QVariantMap> m_devices; // by object path
    bool m_ready = false;
    quint64 m_generation = 0; // replies of an older enumeration are dropped
};

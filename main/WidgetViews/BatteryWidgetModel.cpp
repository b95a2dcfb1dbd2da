#include "BatteryWidgetModel.h"

#include "BatteryMonitor.h"
#include "SettingsManager.h"

BatteryWidgetModel::BatteryWidgetModel(QObject* parent) : QObject(parent), m_timer(this), m_rings(this)
{
    m_timer.setInterval(refreshIntervalMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &BatteryWidgetModel::refreshDevices);
    const SettingsManager* settings = &SettingsManager::shared();
    connect(settings, &SettingsManager::batterySizeChanged, this, &BatteryWidgetModel::updateRings);
    connect(settings, &SettingsManager::batteryVisibleDevicesChanged, this, &BatteryWidgetModel::updateRings);
    connect(&BatteryMonitor::shared().changes(), &ChangeNotifier::changed, this, [this] {
        if (m_active)
            refreshDevices();
    });
}

void BatteryWidgetModel::setActive(bool active)
{
    const bool becameActive = active && !m_active;
    m_active = active;
    emit activeChanged();
    if (!active) {
        m_timer.stop();
        return;
    }
    if (!becameActive)
        return;
    refreshDevices();
    m_computerName = BatteryMonitor::shared().getComputerName();
    updateRings();
    m_timer.start();
}

void BatteryWidgetModel::refreshDevices()
{
    QList<BatteryDevice> devices = BatteryMonitor::shared().getBatteryDevices();
    // Most polls find what the last one found: that costs the parse and nothing else, no frame
    // and no write.
    if (m_hasReading && devices == m_devices)
        return;
    m_hasReading = true;
    m_devices = std::move(devices);
    emit glowColorChanged();
    updateRings();
    SettingsManager::shared().setBatteryData(m_devices);
}

void BatteryWidgetModel::updateRings()
{
    const SettingsManager& settings = SettingsManager::shared();
    m_rings.setRings(
        batteryrules::ringsFor(m_devices, settings.batterySize(), settings.batteryVisibleDevices(), m_computerName));
}

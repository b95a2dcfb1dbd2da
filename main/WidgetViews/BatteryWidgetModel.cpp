#include "BatteryWidgetModel.h"

#include "BatteryMonitor.h"
#include "SettingsManager.h"

#include <algorithm>

namespace {

const BatteryDevice* mainDevice(const QList<BatteryDevice>& devices)
{
    const auto it = std::find_if(devices.begin(), devices.end(),
                                 [](const BatteryDevice& d) { return d.type == QLatin1String("macbook"); });
    return it == devices.end() ? nullptr : &*it;
}

} // namespace

BatteryWidgetModel::BatteryWidgetModel(QObject* parent) : QObject(parent), m_timer(this), m_rings(this)
{
    m_timer.setInterval(refreshIntervalMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &BatteryWidgetModel::refreshDevices);
    const SettingsManager* settings = &SettingsManager::shared();
    connect(settings, &SettingsManager::batterySizeChanged, this, [this] {
        emit isSmallChanged();
        updateRings();
    });
    connect(settings, &SettingsManager::batteryVisibleDevicesChanged, this, &BatteryWidgetModel::updateRings);
    connect(&BatteryMonitor::shared().changes(), &ChangeNotifier::changed, this, [this] {
        if (m_active)
            refreshDevices();
    });
}

QVariantList BatteryWidgetModel::devices() const
{
    QVariantList list;
    for (const BatteryDevice& d : m_devices)
        list.append(d.toJsonObject().toVariantMap());
    return list;
}

bool BatteryWidgetModel::isSmall() const
{
    return SettingsManager::shared().batterySize() == QLatin1String("small");
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
    emit computerNameChanged();
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
    emit devicesChanged();
    emit glowColorChanged();
    updateRings();
    SettingsManager::shared().setBatteryData(m_devices);
}

void BatteryWidgetModel::updateRings()
{
    const SettingsManager& settings = SettingsManager::shared();
    m_rings.setRings(ringsFor(m_devices, settings.batterySize(), settings.batteryVisibleDevices(), m_computerName));
}

QColor BatteryWidgetModel::glowColorFor(const QList<BatteryDevice>& devices)
{
    const BatteryDevice* main = mainDevice(devices);
    if (!main)
        return Qt::transparent;
    if (main->percent >= 20)
        return green();
    return main->charging ? orange() : red();
}

QString BatteryWidgetModel::visibilityCategory(const QString& type)
{
    // Every input accessory and every unknown type shares the "mouse" switch.
    for (const char* own : {"macbook", "watch", "airpods"}) {
        if (type == QLatin1String(own))
            return type;
    }
    return QStringLiteral("mouse");
}

QList<BatteryRing> BatteryWidgetModel::ringsFor(const QList<BatteryDevice>& devices, const QString& batterySize,
                                                const QStringList& visibleCategories, const QString& computerName)
{
    if (batterySize == QLatin1String("small")) {
        const BatteryDevice* main = mainDevice(devices);
        return main ? QList<BatteryRing>{{*main, true, computerName}} : QList<BatteryRing>{};
    }
    QList<BatteryRing> rings;
    for (const BatteryDevice& d : devices) {
        if (rings.size() == 4)
            break;
        if (!visibleCategories.contains(visibilityCategory(d.type)))
            continue;
        rings.append({d, false, d.type == QLatin1String("macbook") ? computerName : d.name});
    }
    return rings;
}

QString BatteryWidgetModel::iconNameFor(const QString& type)
{
    static const QList<std::pair<QString, QString>> table = {
        {"macbook", "laptopcomputer"}, {"watch", "applewatch"},           {"mouse", "mouse"},
        {"keyboard", "keyboard"},      {"trackpad", "ipad.and.trackpad"}, {"airpods", "airpods"},
    };
    for (const auto& [t, symbol] : table) {
        if (t == type)
            return symbol;
    }
    return QStringLiteral("battery.100");
}

QColor BatteryWidgetModel::arcColor(qint64 percent)
{
    return percent < 20 ? red() : green();
}

QString BatteryWidgetModel::percentText(qint64 percent)
{
    return QString::number(percent) + '%';
}

QString BatteryWidgetModel::statusText(const BatteryRing& ring)
{
    if (!ring.isSmall)
        return percentText(ring.device.percent);
    return ring.device.charging ? QStringLiteral("In carica") : QStringLiteral("Alimentazione");
}

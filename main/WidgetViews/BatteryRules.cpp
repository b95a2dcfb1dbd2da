#include "BatteryRules.h"

#include <algorithm>

namespace {

const BatteryDevice* mainDevice(const QList<BatteryDevice>& devices)
{
    const auto it = std::find_if(devices.begin(), devices.end(),
                                 [](const BatteryDevice& d) { return d.type == QLatin1String("macbook"); });
    return it == devices.end() ? nullptr : &*it;
}

} // namespace

namespace batteryrules {

QColor glowColor(const QList<BatteryDevice>& devices)
{
    const BatteryDevice* main = mainDevice(devices);
    if (!main)
        return Qt::transparent;
    if (main->percent >= 20)
        return green();
    return main->charging ? orange() : red();
}

QString visibilityCategory(const QString& type)
{
    // Every input accessory and every unknown type shares the "mouse" switch.
    for (const char* own : {"macbook", "watch", "airpods"}) {
        if (type == QLatin1String(own))
            return type;
    }
    return QStringLiteral("mouse");
}

QList<BatteryRing> ringsFor(const QList<BatteryDevice>& devices, const QString& batterySize,
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

QString iconName(const QString& type)
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

QColor arcColor(qint64 percent)
{
    return percent < 20 ? red() : green();
}

QString percentText(qint64 percent)
{
    return QString::number(percent) + '%';
}

QString statusText(const BatteryRing& ring)
{
    if (!ring.isSmall)
        return percentText(ring.device.percent);
    return ring.device.charging ? QStringLiteral("In carica") : QStringLiteral("Alimentazione");
}

} // namespace batteryrules

#pragma once
// The battery widget's pure rules: which rings it draws for a reading, and their colours and texts.
// The widget's model and its ring list both read them.
#include "SharedWidgetData.h"

#include <QColor>
#include <QList>
#include <QString>
#include <QStringList>

struct BatteryRing {
    BatteryDevice device;
    bool isSmall = false; // the large ring of the "small" widget size
    QString customName;   // the label under the ring
    bool operator==(const BatteryRing&) const = default;
};

namespace batteryrules {

// The system's named colours.
inline QColor green()
{
    return QColor(52, 199, 89);
}
inline QColor orange()
{
    return QColor(255, 149, 0);
}
inline QColor red()
{
    return QColor(255, 59, 48);
}

// The frame's glow, from the first computer battery; clear without one.
QColor glowColor(const QList<BatteryDevice>& devices);
// The Control Panel switch a device type answers to.
QString visibilityCategory(const QString& type);
// "small": the computer's large ring alone; any other size: up to four rings of the ticked categories.
QList<BatteryRing> ringsFor(const QList<BatteryDevice>& devices, const QString& batterySize,
                            const QStringList& visibleCategories, const QString& computerName);
QString iconName(const QString& type);
QColor arcColor(qint64 percent);
QString percentText(qint64 percent);
QString statusText(const BatteryRing& ring); // the row under the name

} // namespace batteryrules

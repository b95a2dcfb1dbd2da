#include "WidgetTable.h"

#include "SettingsManager.h"

namespace widgets {

double widthForSize(const QString& size)
{
    return size == "medium" ? 340.0 : 170.0;
}

QString viewName(const QString& name)
{
    if (name == "clock")
        return "ClockWidgetView";
    if (name == "weather")
        return "WeatherWidgetView";
    if (name == "battery")
        return "BatteryWidgetView";
    if (name == "music")
        return "MusicWidgetView";
    return {};
}

std::optional<Position> defaultOrigin(const QString& name, const Rect& v, double width)
{
    const double x = v.maxX() - width - 20;
    if (name == "clock")
        return Position{x, v.maxY() - 170 - 40};
    if (name == "weather")
        return Position{x, v.maxY() - 340 - 80};
    if (name == "battery")
        return Position{x, v.maxY() - 510 - 120};
    if (name == "music")
        return Position{x, v.minY() + 40};
    return std::nullopt;
}

// The store's properties are named after the widget ("clockSize", "musicEnabled"); an unknown
// name reads as empty and false.
QString sizeOf(const SettingsManager& s, const QString& name)
{
    return s.property((name + "Size").toLatin1()).toString();
}

bool clickThroughOf(const SettingsManager& s, const QString& name)
{
    return s.property((name + "ClickThrough").toLatin1()).toBool();
}

bool enabledOf(const SettingsManager& s, const QString& name)
{
    return s.property((name + "Enabled").toLatin1()).toBool();
}

} // namespace widgets

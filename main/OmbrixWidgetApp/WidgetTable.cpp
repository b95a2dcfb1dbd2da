#include "WidgetTable.h"

#include "SettingsManager.h"

namespace widgets {

double widthForSize(const QString& size) { return size == "medium" ? 340.0 : 170.0; }

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

QString sizeOf(const SettingsManager& s, const QString& name)
{
    if (name == "clock")
        return s.clockSize();
    if (name == "weather")
        return s.weatherSize();
    if (name == "battery")
        return s.batterySize();
    if (name == "music")
        return s.musicSize();
    return {};
}

bool clickThroughOf(const SettingsManager& s, const QString& name)
{
    if (name == "clock")
        return s.clockClickThrough();
    if (name == "weather")
        return s.weatherClickThrough();
    if (name == "battery")
        return s.batteryClickThrough();
    return name == "music" && s.musicClickThrough();
}

bool enabledOf(const SettingsManager& s, const QString& name)
{
    if (name == "clock")
        return s.clockEnabled();
    if (name == "weather")
        return s.weatherEnabled();
    if (name == "battery")
        return s.batteryEnabled();
    return name == "music" && s.musicEnabled();
}

} // namespace widgets

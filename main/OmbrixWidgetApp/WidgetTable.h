#pragma once
// The four widgets: their names, views, frames and default places.
#include "Geometry.h"
#include "SettingsRecords.h"

#include <QString>
#include <QStringList>
#include <optional>

class SettingsManager;

namespace widgets {

inline const QStringList names = {"clock", "weather", "battery", "music"};
constexpr double height = 170.0;

// Only "medium" is compared; every other size is small.
double widthForSize(const QString& size);

// The QML view for a widget name, or an empty string for a name outside the four.
QString viewName(const QString& name);

// Where a widget with no saved position opens, in app coordinates.
std::optional<Position> defaultOrigin(const QString& name, const Rect& visibleFrame, double width);

// The store's per-widget properties, looked up by name.
QString sizeOf(const SettingsManager& s, const QString& name);
bool clickThroughOf(const SettingsManager& s, const QString& name);
bool enabledOf(const SettingsManager& s, const QString& name);

} // namespace widgets

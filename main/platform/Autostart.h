#pragma once
// Start at login: an XDG autostart entry in $XDG_CONFIG_HOME/autostart (~/.config/autostart)
// that starts this same program. The file is the only state, so an entry added or removed by
// another tool shows up here too.
#include <QByteArray>
#include <QString>

namespace autostart {

// The option the entry starts the program with: a start at login is quiet (no Control Panel).
inline constexpr const char* quietOption = "--minimized";

QString entryPath();
// The entry exists and is not switched off inside (Hidden, X-GNOME-Autostart-enabled).
bool isEnabled();
// Writes or removes the entry; false when that failed.
bool setEnabled(bool enabled, const QString& program);
// Rewrites an entry left by an earlier version, whose start showed the panel, to start quietly;
// true when it rewrote one.
bool upgrade(const QString& program);
// The entry's text for `program` (with the quiet option), quoted as the desktop entry rules want.
QByteArray entryText(const QString& program);

} // namespace autostart

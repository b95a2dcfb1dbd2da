#pragma once
// Start at login: an XDG autostart entry in $XDG_CONFIG_HOME/autostart (~/.config/autostart)
// that starts this same program. The file is the only state, so an entry added or removed by
// another tool shows up here too.
#include <QByteArray>
#include <QString>

namespace autostart {

QString entryPath();
// The entry exists and is not switched off inside (Hidden, X-GNOME-Autostart-enabled).
bool isEnabled();
// Writes or removes the entry; false when that failed.
bool setEnabled(bool enabled, const QString& program);
// The entry's text for `program`, quoted as the desktop entry rules want.
QByteArray entryText(const QString& program);

} // namespace autostart

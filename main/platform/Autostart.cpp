#include "Autostart.h"

#include "AtomicFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>
#include <algorithm>

namespace autostart {

QString entryPath()
{
    // GenericConfigLocation follows $XDG_CONFIG_HOME and falls back to ~/.config.
    return QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation) +
           "/autostart/com.ombrixwidget.OmbrixWidget.desktop";
}

bool isEnabled()
{
    QFile f(entryPath());
    if (!f.open(QIODevice::ReadOnly))
        return false;
    while (!f.atEnd()) {
        const QByteArray line = f.readLine().trimmed();
        if (line == "Hidden=true" || line == "X-GNOME-Autostart-enabled=false")
            return false;
    }
    return true;
}

QByteArray entryText(const QString& program)
{
    QString exec = program;
    static const QString reserved = " \t\n\"'\\><~|&;$*?#()`";
    if (std::any_of(exec.cbegin(), exec.cend(), [](QChar c) { return reserved.contains(c); })) {
        for (const char* c : {"\\", "\"", "`", "$"})
            exec.replace(c, QString("\\") + c);
        // Inside a quoted argument a backslash is itself escaped once more by the key's string rule.
        exec = '"' + exec.replace("\\", "\\\\") + '"';
    }
    QFile templ(":/packaging/autostart.desktop.in");
    templ.open(QIODevice::ReadOnly);
    return templ.readAll().replace("@EXEC@", exec.toUtf8());
}

bool setEnabled(bool enabled, const QString& program)
{
    const QString path = entryPath();
    if (!enabled)
        return !QFile::exists(path) || QFile::remove(path);
    QDir().mkpath(QFileInfo(path).path());
    return atomicfile::replace(path, entryText(program));
}

bool upgrade(const QString& program)
{
    if (!isEnabled())
        return false;
    QFile f(entryPath());
    if (!f.open(QIODevice::ReadOnly))
        return false;
    // Only an entry of ours that starts the program with the panel up: another tool's or the
    // user's own options stay as they are.
    while (!f.atEnd()) {
        const QByteArray line = f.readLine().trimmed();
        if (line.startsWith("Exec=") && !line.contains(quietOption))
            return setEnabled(true, program);
    }
    return false;
}

} // namespace autostart

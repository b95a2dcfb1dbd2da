#include "Autostart.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
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
    QSaveFile f(path);
    if (!f.open(QIODevice::WriteOnly))
        return false;
    f.write(entryText(program));
    return f.commit();
}

} // namespace autostart

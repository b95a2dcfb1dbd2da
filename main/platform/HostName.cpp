#include "HostName.h"

#include "ChildProcess.h"

#include <QFile>
#include <QStandardPaths>
#include <QSysInfo>

namespace hostname {
namespace {

QString unquoted(const QString& value)
{
    if (value.size() >= 2 && value.front() == '\'' && value.back() == '\'')
        return value.mid(1, value.size() - 2);
    if (value.size() < 2 || value.front() != '"' || value.back() != '"')
        return value;
    QString out;
    const QString inner = value.mid(1, value.size() - 2);
    for (qsizetype i = 0; i < inner.size(); ++i) {
        if (inner[i] == '\\' && i + 1 < inner.size())
            ++i;
        out += inner[i];
    }
    return out;
}

} // namespace

QString prettyFromMachineInfo(const QByteArray& text)
{
    QString pretty;
    for (const QByteArray& raw : text.split('\n')) {
        const QString line = QString::fromUtf8(raw).trimmed();
        if (line.startsWith('#'))
            continue;
        const qsizetype eq = line.indexOf('=');
        if (eq > 0 && line.left(eq).trimmed() == QLatin1String("PRETTY_HOSTNAME"))
            pretty = unquoted(line.mid(eq + 1).trimmed()).trimmed();
    }
    return pretty;
}

QString prettyHostName(const QString& machineInfo)
{
    QFile file(machineInfo);
    if (file.open(QIODevice::ReadOnly)) {
        const QString pretty = prettyFromMachineInfo(file.read(64 * 1024));
        if (!pretty.isEmpty())
            return pretty;
    }
    const QString tool = QStandardPaths::findExecutable("hostnamectl");
    if (tool.isEmpty())
        return {};
    const auto out = childprocess::run(tool, {"--pretty"}, childprocess::Channels::OutputOnly);
    const auto text = out ? childprocess::decodeUtf8(*out) : std::nullopt;
    return text ? text->trimmed() : QString();
}

QString localizedName(const QString& machineInfo)
{
    const QString pretty = prettyHostName(machineInfo);
    return pretty.isEmpty() ? QSysInfo::machineHostName().trimmed() : pretty;
}

} // namespace hostname

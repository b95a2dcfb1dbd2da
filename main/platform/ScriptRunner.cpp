#include "ScriptRunner.h"

#include <QProcess>
#include <QStandardPaths>

std::unique_ptr<ScriptRunner> ScriptRunner::forThisMachine()
{
    const QString osascript = QStandardPaths::findExecutable(QStringLiteral("osascript"));
    if (!osascript.isEmpty())
        return std::make_unique<OsascriptRunner>(osascript);
    return nullptr;
}

OsascriptRunner::OsascriptRunner(QString program, int timeoutMs) : m_program(std::move(program)), m_timeoutMs(timeoutMs)
{
}

std::optional<QString> OsascriptRunner::run(const QString& script)
{
    // With no arguments osascript reads the script from its input; errors go to stderr, which is
    // not part of the result.
    QProcess process;
    process.setStandardErrorFile(QProcess::nullDevice());
    process.start(m_program, {});
    if (!process.waitForStarted(m_timeoutMs))
        return std::nullopt;
    process.write(script.toUtf8());
    process.closeWriteChannel();
    if (!process.waitForFinished(m_timeoutMs)) {
        process.kill();
        process.waitForFinished();
        return std::nullopt;
    }
    if (process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0)
        return std::nullopt;
    // osascript ends the printed result with one line feed that the result itself lacks.
    QString out = QString::fromUtf8(process.readAllStandardOutput());
    if (out.endsWith(QLatin1Char('\n')))
        out.chop(1);
    return out;
}

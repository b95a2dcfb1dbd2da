#include "ChildProcess.h"

#include "PlatformLog.h"

#include <QProcess>
#include <QStringDecoder>
#include <csignal>
#include <unistd.h>

Q_LOGGING_CATEGORY(lcPlatform, "ombrix.platform", QtWarningMsg)

namespace childprocess {

std::optional<QByteArray> run(const QString& program, const QStringList& args, Channels channels, int timeoutMs)
{
    QProcess process;
    if (channels == Channels::Merged)
        process.setProcessChannelMode(QProcess::MergedChannels);
    else
        process.setStandardErrorFile(QProcess::nullDevice());
    process.setStandardInputFile(QProcess::nullDevice());
    // A group of its own, so a hung tool started by a shell can be ended along with the shell.
    process.setChildProcessModifier([] { ::setpgid(0, 0); });
    process.start(program, args, QIODevice::ReadOnly);
    if (!process.waitForStarted(-1)) {
        qCDebug(lcPlatform) << program << "did not start:" << process.errorString();
        return std::nullopt;
    }
    // QProcess keeps reading the pipe into its own buffer while it waits, so the child never
    // blocks on a full pipe.
    process.waitForFinished(timeoutMs);
    if (process.state() != QProcess::NotRunning) {
        ::kill(-pid_t(process.processId()), SIGKILL);
        process.kill();
        process.waitForFinished(-1);
        qCWarning(lcPlatform) << program << args << "ended after" << timeoutMs << "ms without finishing";
        return std::nullopt;
    }
    return process.readAll();
}

std::optional<QString> decodeUtf8(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringConverter::Utf8,
                           QStringConverter::Flag::Stateless | QStringConverter::Flag::ConvertInitialBom);
    QString text = decoder.decode(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

} // namespace childprocess

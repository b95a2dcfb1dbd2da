#include "MusicScripts.h"

#include <QStringList>

namespace musicscript {

QString nowPlaying(const QString& app)
{
    // Music has no artwork address, so its reply leaves the third field empty.
    const QString reply =
        app == spotify
            ? QStringLiteral(
                  R"(                return (name of current track) & "|||" & (artist of current track) & "|||" & (artwork url of current track) & "|||spotify")")
            : QStringLiteral(
                  R"(                return (name of current track) & "|||" & (artist of current track) & "||||||music")");
    return QStringList{
        QStringLiteral(R"(tell application "System Events")"),
        QStringLiteral(R"(    if (count of (processes whose name is ")") + app + QStringLiteral(R"(")) > 0 then)"),
        QStringLiteral(R"(        tell application ")") + app + QStringLiteral(R"(")"),
        QStringLiteral("            if player state is playing then"),
        reply,
        QStringLiteral("            end if"),
        QStringLiteral("        end tell"),
        QStringLiteral("    end if"),
        QStringLiteral("end tell"),
        QStringLiteral(R"(return "")"),
    }
        .join(QLatin1Char('\n'));
}

QString isRunning(const QString& app)
{
    return QStringList{
        QStringLiteral(R"(tell application "System Events")"),
        QStringLiteral(R"(    return (count of (processes whose name is ")") + app + QStringLiteral(R"(")) > 0)"),
        QStringLiteral("end tell"),
    }
        .join(QLatin1Char('\n'));
}

std::optional<QString> control(const QString& action, const QString& app)
{
    QString verb;
    if (action == QLatin1String("playpause"))
        verb = QStringLiteral("playpause");
    else if (action == QLatin1String("next"))
        verb = QStringLiteral("next track");
    else if (action == QLatin1String("previous"))
        verb = QStringLiteral("previous track");
    else
        return std::nullopt;
    return QStringLiteral(R"(tell application ")") + app + QStringLiteral(R"(" to )") + verb;
}

} // namespace musicscript

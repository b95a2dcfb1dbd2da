#pragma once
// The AppleScript texts the music monitor sends, written only here, so that tests and fakes
// answer exactly the texts the monitor asks, and nothing looser.
#include <QString>
#include <QStringList>
#include <optional>

namespace musicscript {

inline const QString spotify = QStringLiteral("Spotify");
inline const QString music = QStringLiteral("Music");

// The transport actions a control script exists for.
inline const QStringList actions = {QStringLiteral("playpause"), QStringLiteral("next"), QStringLiteral("previous")};

// "track|||artist|||artwork|||source" while `app` ("Spotify" or "Music") plays, else "".
QString nowPlaying(const QString& app);
// "true" or "false": whether `app` has a process.
QString isRunning(const QString& app);
// One line telling `app` to do `action`; nothing for an action outside `actions`.
std::optional<QString> control(const QString& action, const QString& app);

} // namespace musicscript

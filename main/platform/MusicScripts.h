#pragma once
// The AppleScript texts the music monitor sends, written only here, so that tests and fakes
// answer exactly the texts the monitor asks, and nothing looser.
#include <QString>
#include <optional>

namespace musicscript {

inline const QString spotify = QStringLiteral("Spotify");
inline const QString music = QStringLiteral("Music");

// "track|||artist|||artwork|||source" while `app` ("Spotify" or "Music") plays, else "".
QString nowPlaying(const QString& app);
// "true" or "false": whether `app` has a process.
QString isRunning(const QString& app);
// One line telling `app` to do `action` ("playpause", "next" or "previous"); nothing for another.
std::optional<QString> control(const QString& action, const QString& app);

} // namespace musicscript

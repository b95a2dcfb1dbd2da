#pragma once
// What is playing, and the transport buttons: through AppleScript texts to Spotify and Music
// where a script runner exists (Spotify always wins over Music), else from the MPRIS players on a
// session bus (Spotify while it plays, else the player that started playing last).
#include "ChangeNotifier.h"
#include "ScriptRunner.h"
#include "SharedWidgetData.h"

#include <QDBusConnection>
#include <QPointer>
#include <memory>
#include <optional>

class MprisPlayers;

class MusicMonitor {
  public:
    static MusicMonitor& shared();

    // Scripts through `runner`; none: nothing plays.
    explicit MusicMonitor(std::unique_ptr<ScriptRunner> runner);
    // The MPRIS players on `playersBus`, watched from the first reading on.
    explicit MusicMonitor(const QDBusConnection& playersBus);
    ~MusicMonitor();

    // Hands the monitor another runner (a fake in tests) and gives back the one it had. While a
    // runner is set it answers; without one the players do, if the monitor has a bus for them.
    std::unique_ptr<ScriptRunner> replaceRunner(std::unique_ptr<ScriptRunner> runner);

    // Never fails: `playing` false stands for nothing playing and for every failure.
    MusicData getNowPlaying();
    // "playpause", "next" or "previous": by script to Spotify if it runs, else to Music if it
    // runs; to the player shown, or the last that played, on MPRIS.
    void controlMusic(const QString& action);
    // Fires when a player's change reaches the monitor before the next poll would.
    const ChangeNotifier& changes() const { return m_changes; }

  private:
    std::optional<QString> runAppleScript(const QString& text);
    std::optional<MusicData> playingOn(const QString& app);
    bool isRunning(const QString& app);

    MprisPlayers* players();

    std::unique_ptr<ScriptRunner> m_runner;
    std::optional<QDBusConnection> m_playersBus;
    // Made at the first reading, on the thread with the event loop; owned by the application so
    // that it goes before the bus connection does.
    QPointer<MprisPlayers> m_players;
    ChangeNotifier m_changes;
};

#include "MusicMonitor.h"

#include "MprisPlayers.h"
#include "MusicScripts.h"
#include "OutsideData.h"

#include <QCoreApplication>

MusicMonitor& MusicMonitor::shared()
{
    static MusicMonitor instance = [] {
        if (auto runner = ScriptRunner::forThisMachine())
            return MusicMonitor(std::move(runner));
        return MusicMonitor(QDBusConnection::sessionBus());
    }();
    return instance;
}

MusicMonitor::MusicMonitor(std::unique_ptr<ScriptRunner> runner) : m_runner(std::move(runner)) {}

MusicMonitor::MusicMonitor(const QDBusConnection& playersBus) : m_playersBus(playersBus) {}

MusicMonitor::~MusicMonitor()
{
    delete m_players;
}

MprisPlayers* MusicMonitor::players()
{
    if (!m_players && m_playersBus && QCoreApplication::instance()) {
        m_players = new MprisPlayers(*m_playersBus, QCoreApplication::instance());
        QObject::connect(m_players, &MprisPlayers::changed, &m_changes, &ChangeNotifier::changed);
    }
    return m_players;
}

std::unique_ptr<ScriptRunner> MusicMonitor::replaceRunner(std::unique_ptr<ScriptRunner> runner)
{
    std::swap(m_runner, runner);
    return runner;
}

std::optional<QString> MusicMonitor::runAppleScript(const QString& text)
{
    return m_runner ? m_runner->run(text) : std::nullopt;
}

MusicData MusicMonitor::getNowPlaying()
{
    if (!m_runner)
        return players() ? m_players->nowPlaying() : MusicData{};
    if (auto data = playingOn(musicscript::spotify))
        return *data;
    if (auto data = playingOn(musicscript::music))
        return *data;
    return MusicData{};
}

std::optional<MusicData> MusicMonitor::playingOn(const QString& app)
{
    const auto reply = runAppleScript(musicscript::nowPlaying(app));
    if (!reply || reply->isEmpty())
        return std::nullopt;
    // Pieces stand as they fall: a title holding "|||" shifts the later fields, and nothing is trimmed.
    const QStringList pieces = reply->split(QStringLiteral("|||"));
    if (pieces.size() < 4)
        return std::nullopt;
    MusicData data;
    data.track = outside::cutText(pieces[0]);
    data.artist = outside::cutText(pieces[1]);
    if (app == musicscript::spotify && !pieces[2].isEmpty() && pieces[2].size() <= outside::maxAddressLength)
        data.artwork = pieces[2];
    data.source = outside::cutText(pieces[3]);
    data.playing = true;
    return data;
}

bool MusicMonitor::isRunning(const QString& app)
{
    const auto reply = runAppleScript(musicscript::isRunning(app));
    return reply && reply->trimmed() == QLatin1String("true");
}

void MusicMonitor::controlMusic(const QString& action)
{
    if (!m_runner) {
        if (players())
            m_players->control(action);
        return;
    }
    // Both questions are asked whatever the first answer; a running Spotify is the target even
    // when paused and Music is the one playing.
    const bool spotifyRunning = isRunning(musicscript::spotify);
    const bool musicRunning = isRunning(musicscript::music);
    if (!spotifyRunning && !musicRunning)
        return;
    if (const auto script = musicscript::control(action, spotifyRunning ? musicscript::spotify : musicscript::music))
        runAppleScript(*script);
}

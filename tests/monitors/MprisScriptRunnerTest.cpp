#include "MprisScriptRunner.h"
#include "MusicMonitor.h"
#include "MusicScripts.h"
#include "PrivateBus.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <signal.h>

namespace {

const QString spotifyName = "org.mpris.MediaPlayer2.spotify";

struct PlayerForCase {
    const char* what;
    QString app;
    QStringList names;
    QString expected;
};

TEST(MprisRules, PlayerForApp)
{
    const PlayerForCase cases[] = {
        {"spotify present", "Spotify", {":1.4", spotifyName}, spotifyName},
        {"spotify absent", "Spotify", {"org.mpris.MediaPlayer2.vlc"}, ""},
        {"spotify instance names are not spotify", "Spotify", {"org.mpris.MediaPlayer2.spotifyd"}, ""},
        {"music is the first other player by name", "Music",
         {spotifyName, "org.mpris.MediaPlayer2.vlc", "org.mpris.MediaPlayer2.audacious"},
         "org.mpris.MediaPlayer2.audacious"},
        {"spotify alone is no music", "Music", {spotifyName}, ""},
        {"other services are no players", "Music", {":1.5", "org.freedesktop.DBus", "org.mpris.Other"}, ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MprisScriptRunner::playerFor(c.app, c.names), c.expected) << c.what;
}

struct ReplyCase {
    const char* what;
    QString app;
    QString status;
    QVariantMap metadata;
    QString expected;
};

TEST(MprisRules, NowPlayingReplyIsBuiltAsTheScriptWould)
{
    const QVariantMap full{{"xesam:title", "Song"},
                           {"xesam:artist", QStringList{"Band", "Guest"}},
                           {"mpris:artUrl", "https://i/x.jpg"}};
    const ReplyCase cases[] = {
        {"spotify playing", "Spotify", "Playing", full, "Song|||Band, Guest|||https://i/x.jpg|||spotify"},
        {"music leaves the artwork out", "Music", "Playing", full, "Song|||Band, Guest||||||music"},
        {"paused", "Spotify", "Paused", full, ""},
        {"stopped", "Music", "Stopped", full, ""},
        {"status is compared exactly", "Spotify", "playing", full, ""},
        {"artist given as plain text", "Spotify", "Playing", {{"xesam:title", "T"}, {"xesam:artist", "Solo"}},
         "T|||Solo||||||spotify"},
        {"no metadata", "Spotify", "Playing", {}, "|||||||||spotify"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(MprisScriptRunner::nowPlayingReply(c.app, c.status, c.metadata), c.expected) << c.what;
}

// Real players on a private session bus, read and driven through the monitor.
class MprisBus : public ::testing::Test {
protected:
    static void SetUpTestSuite() { s_bus = new PrivateBus; }
    static void TearDownTestSuite()
    {
        delete s_bus;
        s_bus = nullptr;
    }
    void SetUp() override
    {
        ASSERT_TRUE(s_bus->isRunning()) << "dbus-daemon did not start";
        m_runner = new MprisScriptRunner(s_bus->connection(), 300);
        m_monitor = std::make_unique<MusicMonitor>(std::unique_ptr<ScriptRunner>(m_runner));
    }
    void TearDown() override { EXPECT_TRUE(s_bus->stopPlayers()); }

    QProcess* player(const QString& name, const QStringList& args)
    {
        QProcess* p = s_bus->startPlayer(name, args);
        EXPECT_NE(p, nullptr) << "player " << name.toStdString() << " never took its name";
        return p;
    }
    QString logPath(const QString& name) const { return m_logs.filePath(name + ".log"); }
    QStringList logged(const QString& name) const
    {
        QFile file(logPath(name));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts);
    }

    static inline PrivateBus* s_bus = nullptr;
    MprisScriptRunner* m_runner = nullptr; // owned by the monitor
    std::unique_ptr<MusicMonitor> m_monitor;
    QTemporaryDir m_logs;
};

MusicData record(QString track, QString artist, std::optional<QString> artwork, QString source)
{
    return MusicData{track, artist, artwork, source, true};
}

TEST_F(MprisBus, SpotifyPlaying)
{
    player("spotify", {"--title", "Song", "--artist", "Band", "--artist", "Guest", "--art-url", "https://i/x.jpg"});
    EXPECT_EQ(m_monitor->getNowPlaying(), record("Song", "Band, Guest", "https://i/x.jpg", "spotify"));
}

TEST_F(MprisBus, PausedPlayerIsNotPlaying)
{
    player("spotify", {"--status", "Paused", "--title", "Song"});
    EXPECT_EQ(m_monitor->getNowPlaying(), MusicData{});
    EXPECT_EQ(m_runner->run(musicscript::isRunning("Spotify")), "true");
    EXPECT_EQ(m_runner->run(musicscript::isRunning("Music")), "false");
}

TEST_F(MprisBus, SpotifyPausedOtherPlayerPlaying)
{
    player("spotify", {"--status", "Paused", "--title", "Song"});
    player("vlc", {"--title", "Tune", "--artist", "Singer", "--art-url", "file:///tmp/a.png"});
    EXPECT_EQ(m_monitor->getNowPlaying(), record("Tune", "Singer", std::nullopt, "music"));
}

TEST_F(MprisBus, BothPlayingSpotifyWins)
{
    player("vlc", {"--title", "Tune", "--artist", "Singer"});
    player("spotify", {"--title", "Song", "--artist", "Band"});
    EXPECT_EQ(m_monitor->getNowPlaying(), record("Song", "Band", std::nullopt, "spotify"));
}

TEST_F(MprisBus, PlayerQuits)
{
    QProcess* spotify = player("spotify", {"--title", "Song"});
    ASSERT_TRUE(m_monitor->getNowPlaying().playing);
    ASSERT_TRUE(s_bus->stopPlayer(spotify));
    EXPECT_EQ(m_monitor->getNowPlaying(), MusicData{});
    EXPECT_EQ(m_runner->run(musicscript::isRunning("Spotify")), "false");
}

TEST_F(MprisBus, TitleHoldingTheSeparatorShiftsFields)
{
    player("spotify", {"--title", "A|||B", "--artist", "C", "--art-url", "u"});
    EXPECT_EQ(m_monitor->getNowPlaying(), record("A", "B", "C", "u"));
}

TEST_F(MprisBus, TransportReachesSpotifyEvenWhenPaused)
{
    player("spotify", {"--status", "Paused", "--title", "Song", "--log", logPath("spotify")});
    player("vlc", {"--title", "Tune", "--log", logPath("vlc")});
    m_monitor->controlMusic("next");
    m_monitor->controlMusic("previous");
    m_monitor->controlMusic("stop");
    m_monitor->controlMusic("playpause");
    EXPECT_EQ(logged("spotify"), QStringList({"Next", "Previous", "PlayPause"}));
    EXPECT_TRUE(logged("vlc").isEmpty());
    // The player resumed, so it now wins the reading.
    EXPECT_EQ(m_monitor->getNowPlaying().source, "spotify");
}

TEST_F(MprisBus, TransportReachesTheOtherPlayerWithoutSpotify)
{
    player("vlc", {"--title", "Tune", "--log", logPath("vlc")});
    m_monitor->controlMusic("playpause");
    EXPECT_EQ(logged("vlc"), QStringList({"PlayPause"}));
    EXPECT_EQ(m_monitor->getNowPlaying(), MusicData{}); // paused by the button
}

TEST_F(MprisBus, OnlyTheMonitorsOwnTextsAreUnderstood)
{
    player("spotify", {"--title", "Song", "--log", logPath("spotify")});
    EXPECT_EQ(m_runner->run("return 1"), std::nullopt);
    EXPECT_EQ(m_runner->run(musicscript::nowPlaying("Spotify") + "\n"), std::nullopt);
    EXPECT_EQ(m_runner->run(R"(tell application "Spotify" to stop)"), std::nullopt);
    EXPECT_EQ(m_runner->run(*musicscript::control("next", "Music")), std::nullopt); // no such player
    EXPECT_TRUE(logged("spotify").isEmpty());
}

TEST_F(MprisBus, HungPlayerTimesOutQuietly)
{
    QProcess* spotify = player("spotify", {"--title", "Song"});
    ASSERT_EQ(::kill(pid_t(spotify->processId()), SIGSTOP), 0);
    const MusicData reading = m_monitor->getNowPlaying();
    m_monitor->controlMusic("next");
    ::kill(pid_t(spotify->processId()), SIGCONT);
    EXPECT_EQ(reading, MusicData{});
}

TEST(MprisNoBus, EveryScriptFails)
{
    auto runner = std::make_unique<MprisScriptRunner>(
        QDBusConnection::connectToBus("unix:path=/nonexistent/bus", "ombrix-no-bus"), 300);
    EXPECT_EQ(runner->run(musicscript::isRunning("Spotify")), std::nullopt);
    EXPECT_EQ(runner->run(musicscript::nowPlaying("Music")), std::nullopt);
    MusicMonitor monitor(std::move(runner));
    EXPECT_EQ(monitor.getNowPlaying(), MusicData{});
    monitor.controlMusic("next");
}

} // namespace

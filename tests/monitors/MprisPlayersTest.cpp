#include "MprisPlayers.h"
#include "MusicMonitor.h"
#include "OutsideData.h"
#include "PrivateBus.h"

#include <QDBusConnectionInterface>
#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <csignal>
#include <gtest/gtest.h>

namespace {

using Player = MprisPlayers::Player;

Player player(const QString& name, const QString& status, quint64 started = 0, quint64 lastPlayed = 0)
{
    return Player{MprisPlayers::busPrefix + name, ":1." + name, name, status, {}, started, lastPlayed, {}};
}

TEST(MprisRules, WhichPlayerIsShownAndWhichTakesTheButtons)
{
    struct Case {
        const char* what;
        QList<Player> players;
        qsizetype shown, target;
    };
    const Case cases[] = {
        {"a paused player first by name does not hide the playing one",
         {player("aaa", "Paused", 1, 2), player("mpv", "Playing", 3, 3)},
         1,
         1},
        {"Spotify wins while it plays, though another started later",
         {player("spotify", "Playing", 1, 1), player("vlc", "Playing", 2, 2)},
         0,
         0},
        {"a paused Spotify gives way to the player that started playing last",
         {player("spotify", "Paused", 1, 4), player("vlc", "Playing", 5, 5), player("mpv", "Playing", 2, 2)},
         1,
         1},
        {"nothing plays: the buttons go to the one that played last",
         {player("vlc", "Paused", 1, 4), player("mpv", "Stopped", 2, 3)},
         -1,
         0},
        {"none was seen playing: Spotify", {player("spotify", "Paused"), player("vlc", "Paused")}, -1, 0},
        {"none was seen playing and no Spotify: the newest",
         {player("vlc", "Paused"), player("mpv", "Stopped")},
         -1,
         1},
        {"no player at all", {}, -1, -1},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(MprisPlayers::chosen(c.players), c.shown) << c.what;
        EXPECT_EQ(MprisPlayers::controlTarget(c.players), c.target) << c.what;
    }
}

TEST(MprisRules, ReadingOfAPlayer)
{
    const auto reading = [](const QString& busName, const QString& identity, const QVariantMap& metadata) {
        return MprisPlayers::readingOf(
            Player{MprisPlayers::busPrefix + busName, ":1.1", identity, "Playing", metadata, 1, 1, {}});
    };
    const QVariantMap full{{"xesam:title", "Song"},
                           {"xesam:artist", QStringList{"Band", "Guest"}},
                           {"mpris:artUrl", "file:///music/cover.jpg"}};
    EXPECT_EQ(reading("spotify", "Spotify", full),
              (MusicData{"Song", "Band, Guest", "file:///music/cover.jpg", "spotify", true}));
    EXPECT_EQ(reading("vlc", "VLC media player", full).source, "VLC media player");
    // Nameless players go by their bus name, without the instance part.
    EXPECT_EQ(reading("mpv.instance4242", " ", full).source, "mpv");
    // Missing texts stay absent for the view's "—"; an empty artwork address is none.
    EXPECT_EQ(reading("mpv", "mpv", {{"mpris:artUrl", ""}}),
              (MusicData{std::nullopt, std::nullopt, std::nullopt, "mpv", true}));
    // Outside texts are cut to what a screen shows; an address too long to be real is none.
    const QString huge(1'000'000, 'x');
    const MusicData big =
        reading("vlc", huge, {{"xesam:title", huge}, {"xesam:artist", huge}, {"mpris:artUrl", "file:///" + huge}});
    EXPECT_EQ(big.track->size(), outside::maxTextLength);
    EXPECT_EQ(big.artist->size(), outside::maxTextLength);
    EXPECT_EQ(big.source->size(), outside::maxTextLength);
    EXPECT_FALSE(big.artwork);
}

// Test players on a private session bus, watched through the monitor.
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
        m_monitor = std::make_unique<MusicMonitor>(s_bus->connection());
        m_monitor->getNowPlaying(); // starts watching
    }
    void TearDown() override { EXPECT_TRUE(s_bus->stopPlayers()); }

    QProcess* start(const QString& name, QStringList args)
    {
        QProcess* p = s_bus->startPlayer(name, args << "--log" << logPath(name));
        EXPECT_NE(p, nullptr) << "player " << name.toStdString() << " never took its name";
        return p;
    }
    QString logPath(const QString& name) const { return m_logs.filePath(name + ".log"); }
    QStringList logged(const QString& name) const
    {
        QFile file(logPath(name));
        return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()).split('\n', Qt::SkipEmptyParts)
                                              : QStringList();
    }
    bool shows(const std::optional<QString>& track)
    {
        return QTest::qWaitFor([&] { return m_monitor->getNowPlaying().track == track; }, 5000);
    }
    void call(const QString& name, const QString& method)
    {
        s_bus->connection().call(QDBusMessage::createMethodCall(
            MprisPlayers::busPrefix + name, "/org/mpris/MediaPlayer2", "org.mpris.MediaPlayer2.Player", method));
    }

    static inline PrivateBus* s_bus = nullptr;
    std::unique_ptr<MusicMonitor> m_monitor;
    QTemporaryDir m_logs;
};

TEST_F(MprisBus, ThePlayerThatStartsPlayingTakesOverAtOnce)
{
    start("aaa", {"--status", "Paused", "--title", "First by name", "--identity", "Aaa Player"});
    start("vlc", {"--title", "Tune", "--artist", "Singer", "--art-url", "file:///tmp/c.png", "--identity",
                  "VLC media player"});
    // The name comes with the second of the two first replies.
    const MusicData vlc{"Tune", "Singer", "file:///tmp/c.png", "VLC media player", true};
    EXPECT_TRUE(QTest::qWaitFor([&] { return m_monitor->getNowPlaying() == vlc; }, 5000));

    // The paused one starts: its signal alone brings the change, no poll needed.
    QSignalSpy changes(&m_monitor->changes(), &ChangeNotifier::changed);
    call("aaa", "Play");
    ASSERT_TRUE(changes.wait(5000));
    EXPECT_EQ(m_monitor->getNowPlaying().track, "First by name");
    EXPECT_EQ(m_monitor->getNowPlaying().source, "Aaa Player");

    // The buttons follow what is shown; with nothing shown, the one that played last.
    m_monitor->controlMusic("next");
    m_monitor->controlMusic("playpause"); // pauses aaa; vlc still plays
    ASSERT_TRUE(shows("Tune"));
    m_monitor->controlMusic("playpause"); // pauses vlc
    ASSERT_TRUE(shows(std::nullopt));
    m_monitor->controlMusic("playpause"); // nothing shown: vlc played last
    ASSERT_TRUE(shows("Tune"));
    m_monitor->controlMusic("stop");
    EXPECT_EQ(logged("aaa"), QStringList({"Play", "Next", "PlayPause"}));
    EXPECT_EQ(logged("vlc"), QStringList({"PlayPause", "PlayPause"}));

    // A player that goes away is no longer shown.
    ASSERT_TRUE(s_bus->stopPlayers());
    EXPECT_TRUE(shows(std::nullopt));
}

TEST_F(MprisBus, SpotifyWinsWhilePlaying)
{
    start("vlc", {"--title", "Tune"});
    ASSERT_TRUE(shows("Tune"));
    start("spotify", {"--title", "Song", "--status", "Paused"});
    call("spotify", "Play");
    ASSERT_TRUE(shows("Song"));
    EXPECT_EQ(m_monitor->getNowPlaying().source, "spotify");
}

// What a poll and a button send on the bus, as the bus itself sees it: the poll reads what the
// players last said and sends nothing, a button sends its one call without waiting, and a player
// that never answers holds up neither.
TEST_F(MprisBus, APollSendsNothingAndAHungPlayerHoldsNothingUp)
{
    QProcess* hung = start("hung", {"--title", "Never"});
    ASSERT_TRUE(shows("Never"));
    ASSERT_EQ(::kill(pid_t(hung->processId()), SIGSTOP), 0);

    QProcess monitor;
    const QString self = s_bus->connection().baseService();
    monitor.start("dbus-monitor",
                  {"--address", s_bus->address(), "--profile", "type='method_call',sender='" + self + "'"});
    QByteArray seen;
    const auto callsSeen = [&] {
        seen += monitor.readAllStandardOutput();
        QStringList calls;
        for (const QString& line : QString::fromUtf8(seen).split('\n')) {
            if (line.startsWith("mc"))
                calls << line.section('\t', -1);
        }
        return calls;
    };
    // It has become a monitor once it has lost its own name.
    ASSERT_TRUE(QTest::qWaitFor([&] { return (callsSeen(), seen.contains("NameLost")); }, 5000));
    for (int i = 0; i < 20; ++i)
        EXPECT_EQ(m_monitor->getNowPlaying().track, "Never");
    m_monitor->controlMusic("next"); // to the shown player, which never answers
    EXPECT_TRUE(QTest::qWaitFor([&] { return !callsSeen().isEmpty(); }, 5000));
    EXPECT_EQ(callsSeen(), QStringList({"Next"}));
    monitor.terminate();
    monitor.waitForFinished();
    ::kill(pid_t(hung->processId()), SIGCONT);
}

} // namespace

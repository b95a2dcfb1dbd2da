#include "MprisPlayers.h"
#include "MusicMonitor.h"
#include "OutsideData.h"
#include "PrivateBus.h"

#include <QDBusMessage>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

using Player = MprisPlayers::Player;

Player player(const QString& name, const QString& status, quint64 started = 0, quint64 lastPlayed = 0)
{
    return Player{MprisPlayers::busPrefix + name, ":1.1", name, status, {}, started, lastPlayed, {}};
}

} // namespace

TEST(MprisPlayers, WhichPlayerIsShownAndWhichTakesTheButtons)
{
    const struct {
        const char* what;
        QList<Player> players;
        qsizetype shown, target;
    } cases[] = {
        {"Spotify wins while it plays", {player("spotify", "Playing", 1, 1), player("vlc", "Playing", 2, 2)}, 0, 0},
        {"a paused Spotify (or any) gives way to the one that started playing last",
         {player("spotify", "Paused", 1, 4), player("vlc", "Playing", 5, 5), player("mpv", "Playing", 2, 2)},
         1,
         1},
        {"nothing plays: the buttons go to the one that played last",
         {player("mpv", "Stopped", 2, 3), player("vlc", "Paused", 1, 4)},
         -1,
         1},
        {"none seen playing: Spotify", {player("vlc", "Paused"), player("spotify", "Paused")}, -1, 1},
        {"none seen playing, no Spotify: the newest", {player("vlc", "Paused"), player("mpv", "Stopped")}, -1, 1},
        {"no player", {}, -1, -1},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(MprisPlayers::chosen(c.players), c.shown);
        EXPECT_EQ(MprisPlayers::controlTarget(c.players), c.target);
    }
}

TEST(MprisPlayers, ReadingOfAPlayer)
{
    const auto reading = [](const QString& busName, const QString& identity, const QVariantMap& metadata) {
        return MprisPlayers::readingOf(
            Player{MprisPlayers::busPrefix + busName, ":1.1", identity, "Playing", metadata, 1, 1, {}});
    };
    const QVariantMap full{
        {"xesam:title", "Song"}, {"xesam:artist", QStringList{"Band", "Guest"}}, {"mpris:artUrl", "file:///a.jpg"}};
    EXPECT_EQ(reading("spotify", "Spotify", full),
              (MusicData{"Song", "Band, Guest", "file:///a.jpg", "spotify", true}));
    EXPECT_EQ(reading("mpv.instance42", " ", full).source, "mpv"); // no identity: the bus name
    // Missing texts stay absent (the view shows "—"); an empty artwork address is none.
    EXPECT_EQ(reading("mpv", "mpv", {{"mpris:artUrl", ""}}), (MusicData{{}, {}, {}, "mpv", true}));
    // Outside texts are cut to what a screen shows; an address too long to be real is none.
    const QString huge(100'000, 'x');
    const MusicData big =
        reading("vlc", huge, {{"xesam:title", huge}, {"xesam:artist", huge}, {"mpris:artUrl", "file:///" + huge}});
    const QString cut(256, 'x');
    EXPECT_EQ(big, (MusicData{cut, cut, {}, cut, true}));
}

// Test players on a private session bus, watched through the monitor: take-over, buttons, going away.
TEST(MprisPlayers, OnABus)
{
    PrivateBus bus;
    ASSERT_TRUE(bus.isRunning()) << "dbus-daemon did not start";
    MusicMonitor monitor(bus.connection());
    monitor.getNowPlaying(); // starts watching
    QTemporaryDir logs;
    const auto logged = [&](const QString& name) {
        QFile file(logs.filePath(name));
        return file.open(QIODevice::ReadOnly) ? QString(file.readAll()).split('\n', Qt::SkipEmptyParts) : QStringList();
    };
    const auto shows = [&](const std::optional<QString>& track) {
        return QTest::qWaitFor([&] { return monitor.getNowPlaying().track == track; }, 5000);
    };
    ASSERT_TRUE(bus.startPlayer("aaa", {"--status", "Paused", "--title", "First", "--log", logs.filePath("aaa")}));
    ASSERT_TRUE(bus.startPlayer("vlc", {"--title", "Tune", "--artist", "Singer", "--art-url", "file:///tmp/c.png",
                                        "--identity", "VLC media player", "--log", logs.filePath("vlc")}));
    const MusicData vlc{"Tune", "Singer", "file:///tmp/c.png", "VLC media player", true};
    EXPECT_TRUE(QTest::qWaitFor([&] { return monitor.getNowPlaying() == vlc; }, 5000));

    // The one that starts playing takes over, by its own signal.
    bus.connection().call(QDBusMessage::createMethodCall(MprisPlayers::busPrefix + "aaa", "/org/mpris/MediaPlayer2",
                                                         "org.mpris.MediaPlayer2.Player", "Play"));
    ASSERT_TRUE(shows("First"));
    // The buttons follow what is shown; with nothing shown, the one that played last.
    monitor.controlMusic("next");
    monitor.controlMusic("previous");
    monitor.controlMusic("playpause"); // pauses aaa; vlc still plays
    ASSERT_TRUE(shows("Tune"));
    monitor.controlMusic("playpause"); // pauses vlc
    ASSERT_TRUE(shows(std::nullopt));
    monitor.controlMusic("playpause"); // nothing shown: vlc played last
    ASSERT_TRUE(shows("Tune"));
    EXPECT_EQ(logged("aaa"), QStringList({"Play", "Next", "Previous", "PlayPause"}));
    EXPECT_EQ(logged("vlc"), QStringList({"PlayPause", "PlayPause"}));

    bus.stopPlayers();
    EXPECT_TRUE(shows(std::nullopt));
}

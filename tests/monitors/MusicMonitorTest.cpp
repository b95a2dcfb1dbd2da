#include "MusicMonitor.h"
#include "FakeScriptRunner.h"
#include "MusicScripts.h"
#include "OutsideData.h"

#include <gtest/gtest.h>

namespace {

// The texts as the players' scripting dictionaries expect them, one line per element.
QString lines(const QStringList& l)
{
    return l.join('\n');
}

struct ScriptCase {
    const char* what;
    QString actual;
    QString expected;
};

TEST(MusicScripts, TextsAreExact)
{
    const ScriptCase cases[] = {
        {"spotify now playing", musicscript::nowPlaying("Spotify"),
         lines(
             {R"(tell application "System Events")",
              R"(    if (count of (processes whose name is "Spotify")) > 0 then)",
              R"(        tell application "Spotify")", R"(            if player state is playing then)",
              R"(                return (name of current track) & "|||" & (artist of current track) & "|||" & (artwork url of current track) & "|||spotify")",
              R"(            end if)", R"(        end tell)", R"(    end if)", R"(end tell)", R"(return "")"})},
        {"music now playing", musicscript::nowPlaying("Music"),
         lines({R"(tell application "System Events")",
                R"(    if (count of (processes whose name is "Music")) > 0 then)",
                R"(        tell application "Music")", R"(            if player state is playing then)",
                R"(                return (name of current track) & "|||" & (artist of current track) & "||||||music")",
                R"(            end if)", R"(        end tell)", R"(    end if)", R"(end tell)", R"(return "")"})},
        {"spotify running", musicscript::isRunning("Spotify"),
         lines({R"(tell application "System Events")",
                R"(    return (count of (processes whose name is "Spotify")) > 0)", R"(end tell)"})},
        {"music running", musicscript::isRunning("Music"),
         lines({R"(tell application "System Events")", R"(    return (count of (processes whose name is "Music")) > 0)",
                R"(end tell)"})},
        {"playpause", *musicscript::control("playpause", "Spotify"), R"(tell application "Spotify" to playpause)"},
        {"next", *musicscript::control("next", "Spotify"), R"(tell application "Spotify" to next track)"},
        {"previous", *musicscript::control("previous", "Music"), R"(tell application "Music" to previous track)"},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(c.actual, c.expected) << c.what;
        EXPECT_FALSE(c.actual.endsWith('\n')) << c.what;
    }
    for (const char* action : {"stop", "", "Next", "play"})
        EXPECT_FALSE(musicscript::control(action, "Spotify")) << action;
}

MusicData record(std::optional<QString> track, std::optional<QString> artist, std::optional<QString> artwork,
                 std::optional<QString> source)
{
    return MusicData{track, artist, artwork, source, true};
}

struct NowPlayingCase {
    const char* what;
    std::optional<QString> spotifyReply;
    std::optional<QString> musicReply;
    MusicData expected;
    int scriptsAsked;
};

TEST(MusicMonitor, NowPlayingReadsTheFirstPlayerThatPlays)
{
    const NowPlayingCase cases[] = {
        {"spotify playing", "Song|||Band|||https://a/x.jpg|||spotify", "Other|||Else||||||music",
         record("Song", "Band", "https://a/x.jpg", "spotify"), 1},
        {"spotify silent, music playing", "", "Tune|||Singer||||||music", record("Tune", "Singer", {}, "music"), 2},
        {"spotify fails, music playing", std::nullopt, "Tune|||Singer||||||music",
         record("Tune", "Singer", {}, "music"), 2},
        {"music never carries artwork", "", "Tune|||Singer|||https://a/y.jpg|||music",
         record("Tune", "Singer", {}, "music"), 2},
        {"neither plays", "", "", MusicData{}, 2},
        {"both fail", std::nullopt, std::nullopt, MusicData{}, 2},
        {"three pieces count as silent", "a|||b|||c", "", MusicData{}, 2},
        {"three pieces fall through to music", "a|||b|||c", "T|||A||||||music", record("T", "A", {}, "music"), 2},
        {"no artwork: absent, still playing", "Song|||Band||||||spotify", "", record("Song", "Band", {}, "spotify"), 1},
        {"empty title stays empty", "|||Band|||u|||spotify", "", record("", "Band", "u", "spotify"), 1},
        {"title holding the separator shifts the fields", "A|||B|||C|||art|||spotify", "", record("A", "B", "C", "art"),
         1},
        {"nothing is trimmed", " Song |||Band |||u|||spotify\n", "", record(" Song ", "Band ", "u", "spotify\n"), 1},
        {"outside texts cut, never inside a surrogate pair; an overlong address dropped",
         QString(outside::maxTextLength - 1, 't') + QString::fromUtf8("\U0001F3B5") + "|||" + QString(9000, 'a') +
             "|||" + QString(outside::maxAddressLength + 1, 'u') + "|||" + QString(9000, 's'),
         "",
         record(QString(outside::maxTextLength - 1, 't'), QString(outside::maxTextLength, 'a'), {},
                QString(outside::maxTextLength, 's')),
         1},
        {"pieces beyond the fourth ignored", "t|||a|||u|||spotify|||extra", "", record("t", "a", "u", "spotify"), 1},
    };
    for (const auto& c : cases) {
        auto runner = std::make_unique<FakeScriptRunner>();
        runner->replies.insert(musicscript::nowPlaying("Spotify"), c.spotifyReply);
        runner->replies.insert(musicscript::nowPlaying("Music"), c.musicReply);
        FakeScriptRunner* fake = runner.get();
        MusicMonitor monitor(std::move(runner));
        EXPECT_EQ(monitor.getNowPlaying(), c.expected) << c.what;
        ASSERT_EQ(fake->asked.size(), c.scriptsAsked) << c.what;
        EXPECT_EQ(fake->asked[0], musicscript::nowPlaying("Spotify")) << c.what;
        if (c.scriptsAsked == 2) {
            EXPECT_EQ(fake->asked[1], musicscript::nowPlaying("Music")) << c.what;
        }
    }
}

struct ControlCase {
    const char* what;
    std::optional<QString> spotifyRunning;
    std::optional<QString> musicRunning;
    QString action;
    std::optional<QString> expectedScript;
};

TEST(MusicMonitor, ControlGoesToSpotifyWheneverItRuns)
{
    const ControlCase cases[] = {
        {"spotify running", "true", "false", "next", R"(tell application "Spotify" to next track)"},
        {"spotify wins over music", "true", "true", "previous", R"(tell application "Spotify" to previous track)"},
        {"trailing line break", "true\n", "false", "playpause", R"(tell application "Spotify" to playpause)"},
        {"blanks around", "  true \t", "false", "next", R"(tell application "Spotify" to next track)"},
        {"music only", "false", "true", "playpause", R"(tell application "Music" to playpause)"},
        {"spotify fails, music runs", std::nullopt, "true", "previous",
         R"(tell application "Music" to previous track)"},
        {"music answer fails", "true", std::nullopt, "next", R"(tell application "Spotify" to next track)"},
        {"capitals are not true", "TRUE", "false", "next", std::nullopt},
        {"other words are not true", "yes", "1", "next", std::nullopt},
        {"neither runs", "false", "false", "playpause", std::nullopt},
        {"both fail", std::nullopt, std::nullopt, "playpause", std::nullopt},
        {"unknown action", "true", "true", "stop", std::nullopt},
    };
    for (const auto& c : cases) {
        auto runner = std::make_unique<FakeScriptRunner>();
        runner->replies.insert(musicscript::isRunning("Spotify"), c.spotifyRunning);
        runner->replies.insert(musicscript::isRunning("Music"), c.musicRunning);
        FakeScriptRunner* fake = runner.get();
        MusicMonitor monitor(std::move(runner));
        monitor.controlMusic(c.action);
        QStringList expected{musicscript::isRunning("Spotify"), musicscript::isRunning("Music")};
        if (c.expectedScript)
            expected << *c.expectedScript;
        EXPECT_EQ(fake->asked, expected) << c.what;
    }
}

TEST(MusicMonitor, SharedInstanceTakesAnotherRunner)
{
    auto runner = std::make_unique<FakeScriptRunner>();
    runner->replies.insert(musicscript::nowPlaying("Spotify"), "S|||A|||u|||spotify");
    FakeScriptRunner* fake = runner.get();
    auto previous = MusicMonitor::shared().replaceRunner(std::move(runner));
    EXPECT_EQ(MusicMonitor::shared().getNowPlaying(), record("S", "A", "u", "spotify"));
    EXPECT_EQ(fake->asked.size(), 1);
    auto back = MusicMonitor::shared().replaceRunner(std::move(previous));
    EXPECT_EQ(back.get(), fake);
}

TEST(MusicMonitor, NoRunnerMeansNothingPlays)
{
    MusicMonitor monitor(nullptr);
    EXPECT_EQ(monitor.getNowPlaying(), MusicData{});
    monitor.controlMusic("next"); // quietly nothing
}

} // namespace

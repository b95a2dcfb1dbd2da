#pragma once
// What Spotify or Music is playing, and the transport buttons, through AppleScript texts.
// Stateless apart from the runner it talks through; Spotify always wins over Music.
#include "ScriptRunner.h"
#include "SharedWidgetData.h"

#include <memory>
#include <optional>

class MusicMonitor {
public:
    static MusicMonitor& shared();

    explicit MusicMonitor(std::unique_ptr<ScriptRunner> runner);

    // Hands the monitor another runner (a fake in tests) and gives back the one it had.
    std::unique_ptr<ScriptRunner> replaceRunner(std::unique_ptr<ScriptRunner> runner);

    // Never fails: `playing` false stands for nothing playing and for every failure.
    MusicData getNowPlaying();
    // "playpause", "next" or "previous" to Spotify if it runs, else to Music if it runs.
    void controlMusic(const QString& action);

private:
    std::optional<QString> runAppleScript(const QString& text);
    std::optional<MusicData> playingOn(const QString& app);
    bool isRunning(const QString& app);

    std::unique_ptr<ScriptRunner> m_runner;
};

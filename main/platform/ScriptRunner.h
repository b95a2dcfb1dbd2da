#pragma once
// Runs AppleScript texts: the one operation the music monitor needs of the system where the
// machine has osascript. Elsewhere the monitor reads MPRIS players instead (MprisPlayers).
#include "ChildProcess.h"

#include <QString>
#include <memory>
#include <optional>

class ScriptRunner {
  public:
    virtual ~ScriptRunner() = default;

    // The script's result as text; nothing where the script cannot be made or fails when run.
    virtual std::optional<QString> run(const QString& script) = 0;

    // osascript if the PATH has it, else nothing.
    static std::unique_ptr<ScriptRunner> forThisMachine();
};

class OsascriptRunner : public ScriptRunner {
  public:
    // A script that has not ended by then is killed and counts as failed, so a hung player
    // cannot hold the GUI for ever.
    static constexpr int defaultTimeoutMs = childprocess::timeLimitMs;

    explicit OsascriptRunner(QString program, int timeoutMs = defaultTimeoutMs);
    std::optional<QString> run(const QString& script) override;

  private:
    QString m_program;
    int m_timeoutMs;
};

#pragma once
// Running a tool to its end and collecting what it printed.
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <optional>

namespace childprocess {

// Every tool runs on the GUI thread, so this is the longest a hung one can freeze a frame; the
// tools answer in tens of milliseconds, osascript's first call to a player in about a second.
inline constexpr int timeLimitMs = 2000;

enum class Channels {
    Merged,     // standard error joins standard output, as one text
    OutputOnly, // standard error is dropped
};

// Runs `program` with `args` until it exits and gives everything it printed; the exit status is not
// looked at. Output is drained while the child runs, so no amount of it stalls the child. Nothing
// when the program cannot be started, or when it outlives `timeoutMs`, in which case it is killed.
std::optional<QByteArray> run(const QString& program, const QStringList& args, Channels channels,
                              int timeoutMs = timeLimitMs);

// Strict UTF-8: nothing when any byte sequence is invalid or cut short. A leading BOM stays text.
std::optional<QString> decodeUtf8(const QByteArray& bytes);

} // namespace childprocess

#include "ScriptRunner.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// Writes an executable `osascript` into `dir` with the given shell body; it keeps what it read.
QString fakeOsascript(const QTemporaryDir& dir, const QByteArray& body)
{
    const QString path = dir.filePath("osascript");
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\ncat > \"$(dirname \"$0\")/received\"\n" + body + "\n");
    file.close();
    file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
    return path;
}

struct OsascriptCase {
    const char* what;
    QByteArray body;
    std::optional<QString> expected;
};

TEST(OsascriptRunner, ResultIsWhatThePrinterPrintedLessItsLineFeed)
{
    const OsascriptCase cases[] = {
        {"boolean", "printf 'true\\n'", "true"},
        {"only one line feed dropped", "printf 'a|||b\\n\\n'", "a|||b\n"},
        {"no output", "exit 0", ""},
        {"empty result line", "printf '\\n'", ""},
        {"error exit", "echo 'execution error' >&2; exit 1", std::nullopt},
        {"errors are not the result", "echo warn >&2; printf 'x\\n'", "x"},
        {"killed by a signal", "kill -9 $$", std::nullopt},
    };
    for (const auto& c : cases) {
        QTemporaryDir dir;
        OsascriptRunner runner(fakeOsascript(dir, c.body));
        EXPECT_EQ(runner.run("return true"), c.expected) << c.what;
    }
}

TEST(OsascriptRunner, ScriptArrivesIntactOnInput)
{
    QTemporaryDir dir;
    OsascriptRunner runner(fakeOsascript(dir, "printf 'ok\\n'"));
    const QString script = "tell application \"Music\"\n    return \"è|||\"\nend tell";
    ASSERT_EQ(runner.run(script), "ok");
    QFile received(dir.filePath("received"));
    ASSERT_TRUE(received.open(QIODevice::ReadOnly));
    EXPECT_EQ(QString::fromUtf8(received.readAll()), script);
}

TEST(OsascriptRunner, MissingOrHungToolGivesNothing)
{
    EXPECT_EQ(OsascriptRunner("/nonexistent/osascript").run("return 1"), std::nullopt);
    QTemporaryDir dir;
    OsascriptRunner hung(fakeOsascript(dir, "sleep 30"), 300);
    EXPECT_EQ(hung.run("return 1"), std::nullopt);
}

TEST(ScriptRunner, ChoosesByWhatThePathHolds)
{
    const QByteArray savedPath = qgetenv("PATH");
    QTemporaryDir withTool;
    fakeOsascript(withTool, "printf 'from the path\\n'");
    QTemporaryDir withoutTool;

    qputenv("PATH", withTool.path().toUtf8() + ":" + savedPath);
    auto chosen = ScriptRunner::forThisMachine();
    EXPECT_NE(dynamic_cast<OsascriptRunner*>(chosen.get()), nullptr);
    EXPECT_EQ(chosen->run("return 1"), "from the path");

    qputenv("PATH", withoutTool.path().toUtf8());
    EXPECT_EQ(ScriptRunner::forThisMachine(), nullptr); // the music monitor reads MPRIS players then
    qputenv("PATH", savedPath);
}

} // namespace

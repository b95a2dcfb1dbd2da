#include "ScriptRunner.h"

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

// An executable `osascript` in `dir` running `body`; it keeps the script it read in "received".
void fakeOsascript(const QTemporaryDir& dir, const QByteArray& body)
{
    QFile file(dir.filePath("osascript"));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("#!/bin/sh\ncat > \"$(dirname \"$0\")/received\"\n" + body + "\n");
    file.setPermissions(file.permissions() | QFileDevice::ExeOwner);
}

} // namespace

TEST(OsascriptRunner, ResultIsThePrintedLineOrNothing)
{
    const std::pair<QByteArray, std::optional<QString>> cases[] = {
        {"printf 'a|||b\\n\\n'", "a|||b\n"},   {"exit 0", ""},
        {"echo warn >&2; printf 'x\\n'", "x"}, {"echo 'execution error' >&2; exit 1", std::nullopt},
        {"kill -9 $$", std::nullopt},
    };
    const QString script = "tell application \"Music\"\n    return \"è|||\"\nend tell";
    for (const auto& [body, expected] : cases) {
        QTemporaryDir dir;
        fakeOsascript(dir, body);
        EXPECT_EQ(OsascriptRunner(dir.filePath("osascript")).run(script), expected) << body.toStdString();
        QFile received(dir.filePath("received"));
        EXPECT_TRUE(received.open(QIODevice::ReadOnly) && received.readAll() == script.toUtf8()) << body.toStdString();
    }
    EXPECT_EQ(OsascriptRunner("/nonexistent/osascript").run("return 1"), std::nullopt);
    QTemporaryDir hung;
    fakeOsascript(hung, "sleep 30");
    EXPECT_EQ(OsascriptRunner(hung.filePath("osascript"), 300).run(script), std::nullopt);

    // Chosen where the PATH has osascript; elsewhere none, and the music monitor reads MPRIS players.
    const QByteArray path = qgetenv("PATH");
    QTemporaryDir dir;
    fakeOsascript(dir, "printf 'from the path\\n'");
    qputenv("PATH", dir.path().toUtf8());
    EXPECT_EQ(ScriptRunner::forThisMachine()->run("1"), "from the path");
    qputenv("PATH", QTemporaryDir().path().toUtf8());
    EXPECT_EQ(ScriptRunner::forThisMachine(), nullptr);
    qputenv("PATH", path);
}

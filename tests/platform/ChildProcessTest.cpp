#include "ChildProcess.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using childprocess::Channels;

TEST(ChildProcess, OutputIsCollectedAndStrictUtf8Decoded)
{
    const QStringList both{"-c", "printf out; printf err >&2; exit 3"}; // the exit status is not looked at
    EXPECT_EQ(childprocess::run("/bin/sh", both, Channels::Merged), "outerr");
    EXPECT_EQ(childprocess::run("/bin/sh", both, Channels::OutputOnly), "out");
    EXPECT_EQ(childprocess::run("/etc/hostname", {}, Channels::Merged), std::nullopt); // not a program
    EXPECT_EQ(childprocess::decodeUtf8("Caff\xc3\xa8"), QString::fromUtf8("Caff\xc3\xa8"));
    for (const char* bad : {"Caff\xe8", "ok \xe2\x82", "\xc0\xaf", "\xed\xa0\x80"})
        EXPECT_EQ(childprocess::decodeUtf8(bad), std::nullopt) << bad;
}

TEST(ChildProcess, ChildThatOutlivesTheLimitIsKilledWithWhatItStarted)
{
    // A shell's hung grandchild holds the output pipe open; neither may hold the caller or linger.
    QTemporaryDir dir;
    const QString pidFile = dir.filePath("tool.pid");
    EXPECT_EQ(childprocess::run("/bin/sh", {"-c", "sleep 300 & echo $! > " + pidFile + "; wait"}, Channels::Merged),
              std::nullopt);
    QFile f(pidFile);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QString stat = "/proc/" + QString::fromLatin1(f.readAll().trimmed()) + "/stat";
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            QFile s(stat);
            return !s.open(QIODevice::ReadOnly) || s.readAll().contains(") Z ");
        },
        10000));
}

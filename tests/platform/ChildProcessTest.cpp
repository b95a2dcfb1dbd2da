#include "ChildProcess.h"

#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

using childprocess::Channels;

TEST(ChildProcess, DecodeUtf8IsStrict)
{
    struct Case {
        const char* what;
        QByteArray bytes;
        std::optional<QString> expected;
    };
    const QList<Case> cases = {
        {"empty", "", QString()},
        {"plain", "abc\n", QString("abc\n")},
        {"accented", "Caff\xc3\xa8", QString::fromUtf8("Caff\xc3\xa8")},
        {"a leading BOM stays", "\xef\xbb\xbfx", QString(QChar(0xfeff)) + 'x'},
        {"a NUL is text", QByteArray("a\0b", 3), QStringView(u"a\0b", 3).toString()},
        {"Latin-1 byte", "Caff\xe8", std::nullopt},
        {"sequence cut at the end", "ok \xe2\x82", std::nullopt},
        {"overlong slash", "\xc0\xaf", std::nullopt},
        {"encoded surrogate", "\xed\xa0\x80", std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(childprocess::decodeUtf8(c.bytes), c.expected);
    }
}

TEST(ChildProcess, RunCollectsWhatTheChildPrinted)
{
    struct Case {
        const char* what;
        QString program;
        QStringList args;
        Channels channels;
        std::optional<QByteArray> expected;
    };
    const QList<Case> cases = {
        {"merged keeps both streams", "/bin/sh", {"-c", "printf out; printf err >&2"}, Channels::Merged, "outerr"},
        {"output only drops errors", "/bin/sh", {"-c", "printf out; printf err >&2"}, Channels::OutputOnly, "out"},
        {"exit status is not looked at", "/bin/sh", {"-c", "printf failed; exit 3"}, Channels::Merged, "failed"},
        {"a child killed by a signal", "/bin/sh", {"-c", "printf x; kill -9 $$"}, Channels::Merged, "x"},
        {"no such program", "/nonexistent/tool", {}, Channels::Merged, std::nullopt},
        {"not executable", "/etc/hostname", {}, Channels::Merged, std::nullopt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(childprocess::run(c.program, c.args, c.channels), c.expected);
    }
}

TEST(ChildProcess, ChildThatOutlivesTheLimitIsKilled)
{
    // Every run is bounded, also with no limit given; a shell's hung grandchild, holding the output
    // pipe open, does not hold the caller either.
    QTemporaryDir dir;
    const QString pidFile = dir.filePath("tool.pid");
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(childprocess::run("/bin/sh", {"-c", "sleep 30 & echo $! > " + pidFile + "; wait"}, Channels::Merged),
              std::nullopt);
    EXPECT_LT(clock.elapsed(), 20000); // far from the child's own 30 s: it was killed
    // The hung tool went with its shell instead of lingering as an orphan.
    QFile f(pidFile);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    const QString stat = "/proc/" + QString::fromLatin1(f.readAll().trimmed()) + "/stat";
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            QFile s(stat);
            return !s.open(QIODevice::ReadOnly) || s.readAll().contains(") Z ");
        },
        5000));
}

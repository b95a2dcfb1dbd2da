#include "DefaultsSuite.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

QJsonObject dumpInOtherProcess(const QString& dir, const QString& suite, const QStringList& keys)
{
    QProcess p;
    p.start(qEnvironmentVariable("OMBRIX_BUILD_DIR") + "/tests/support/ombrix-suite-dump",
            QStringList{dir, suite} + keys);
    EXPECT_TRUE(p.waitForFinished(10000));
    EXPECT_EQ(p.exitCode(), 0);
    return QJsonDocument::fromJson(p.readAllStandardOutput()).object();
}

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// The disk as good as full: files of this process cannot grow past `bytes`, and a write beyond that
// fails with EFBIG instead of raising SIGXFSZ. Needs no root, unlike a small mounted filesystem.
struct FileSizeLimit {
    explicit FileSizeLimit(rlim_t bytes)
    {
        getrlimit(RLIMIT_FSIZE, &saved);
        oldHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limited = saved;
        limited.rlim_cur = bytes;
        setrlimit(RLIMIT_FSIZE, &limited);
    }
    ~FileSizeLimit()
    {
        setrlimit(RLIMIT_FSIZE, &saved);
        std::signal(SIGXFSZ, oldHandler);
    }
    rlimit saved{};
    void (*oldHandler)(int) = nullptr;
};

} // namespace

TEST(DefaultsSuite, EveryKindRoundTripsIntoAnotherProcess)
{
    QTemporaryDir dir;
    auto suite = DefaultsSuite::open("group.test", dir.path());
    ASSERT_TRUE(suite);
    suite->setObject(true, "b.true");
    suite->setObject(false, "b.false");
    suite->setObject(QString("Roma, Italia \"q\" ü"), "s");
    suite->setObject(QString(), "s.empty");
    suite->setObject(QByteArray("{\"x\":1.5,\"y\":-2}"), "d");
    suite->setObject(QStringList{}, "l.empty");
    suite->setObject(QStringList{"mouse"}, "l.one");
    suite->setObject(QStringList{"airpods", "macbook", "a,b"}, "l.many");
    ASSERT_TRUE(suite->synchronize());

    const auto out = dumpInOtherProcess(
        dir.path(), "group.test", {"b.true", "b.false", "s", "s.empty", "d", "l.empty", "l.one", "l.many", "none"});
    EXPECT_EQ(out["b.true"].toObject(), (QJsonObject{{"bool", true}}));
    EXPECT_EQ(out["b.false"].toObject(), (QJsonObject{{"bool", false}}));
    EXPECT_EQ(out["s"].toObject(), (QJsonObject{{"string", "Roma, Italia \"q\" ü"}}));
    EXPECT_EQ(out["s.empty"].toObject(), (QJsonObject{{"string", ""}}));
    EXPECT_EQ(out["d"].toObject(), (QJsonObject{{"data", "{\"x\":1.5,\"y\":-2}"}}));
    EXPECT_EQ(out["l.empty"].toObject(), (QJsonObject{{"list", QJsonArray()}}));
    EXPECT_EQ(out["l.one"].toObject(), (QJsonObject{{"list", QJsonArray{"mouse"}}}));
    EXPECT_EQ(out["l.many"].toObject(), (QJsonObject{{"list", QJsonArray{"airpods", "macbook", "a,b"}}}));
    EXPECT_TRUE(out["none"].toObject().isEmpty());
}

TEST(DefaultsSuite, ValueOfAnotherKindReadsAsMissing)
{
    QTemporaryDir dir;
    auto suite = DefaultsSuite::open("group.test", dir.path());
    suite->setObject(QString("true"), "k");
    EXPECT_FALSE(suite->boolForKey("k"));
    EXPECT_FALSE(suite->dataForKey("k"));
    EXPECT_FALSE(suite->stringArrayForKey("k"));
    EXPECT_EQ(suite->stringForKey("k"), QString("true"));
    suite->setObject(QVariant(42), "int"); // not a kind the suite keeps
    EXPECT_FALSE(suite->stringForKey("int"));
    suite->removeObject("k");
    EXPECT_FALSE(suite->stringForKey("k"));
}

TEST(DefaultsSuite, DamagedLinesCostOnlyTheirOwnKey)
{
    QTemporaryDir dir;
    {
        auto suite = DefaultsSuite::open("group.test", dir.path());
        suite->setObject(true, "a");
        suite->setObject(QString("kept"), "b");
        suite->setObject(QStringList{"x"}, "c");
        suite->synchronize();
    }
    const QString path = dir.path() + "/group.test.json";
    QFile f(path);
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    QByteArray text = f.readAll();
    f.close();
    // Damage the first line, add junk lines and cut the last line short.
    text.replace(0, 3, "\x01\xff{");
    // A value far larger than any the app stores (a 14 MB city name once) is damage too.
    text.append("{\"k\":\"huge\",\"string\":\"" + QByteArray(1 << 20, 'x') + "\"}\n");
    text.append("not json\n{\"k\":\"z\",\"data\":\"***\"}\n{\"k\":\"w\",\"lis");
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write(text);
    f.close();

    auto suite = DefaultsSuite::open("group.test", dir.path());
    ASSERT_TRUE(suite);
    EXPECT_FALSE(suite->boolForKey("a"));
    EXPECT_EQ(suite->stringForKey("b"), QString("kept"));
    EXPECT_EQ(suite->stringArrayForKey("c"), QStringList{"x"});
    EXPECT_FALSE(suite->dataForKey("z"));
    EXPECT_FALSE(suite->stringForKey("huge"));
    suite->setObject(false, "new");
    EXPECT_TRUE(suite->synchronize());
    auto again = DefaultsSuite::open("group.test", dir.path());
    EXPECT_EQ(again->stringForKey("b"), QString("kept"));
    EXPECT_EQ(again->boolForKey("new"), false);
}

TEST(DefaultsSuite, UnusableSuiteGivesNothingAndStandardStandsIn)
{
    QTemporaryDir dir;
    EXPECT_FALSE(DefaultsSuite::open("", dir.path()));
    EXPECT_FALSE(DefaultsSuite::open("a/b", dir.path()));
    ASSERT_TRUE(QDir(dir.path()).mkpath("blocked.json")); // a folder where the file should be
    EXPECT_FALSE(DefaultsSuite::open("blocked", dir.path()));
    auto standard = DefaultsSuite::standard(dir.path());
    ASSERT_TRUE(standard);
    standard->setObject(QString("v"), "k");
    EXPECT_TRUE(standard->synchronize());
    EXPECT_EQ(DefaultsSuite::standard(dir.path())->stringForKey("k"), QString("v"));
}

TEST(DefaultsSuite, SaveOnAFullDiskLeavesTheFileAndKeepsTheValuesForTheNextSave)
{
    QTemporaryDir dir;
    auto suite = DefaultsSuite::open("group.test", dir.path());
    suite->setObject(true, "widget.clock.enabled");
    ASSERT_TRUE(suite->synchronize());
    const QByteArray before = readFile(suite->filePath());

    // Small enough to stay in a write buffer, larger than the room left.
    suite->setObject(QString(2000, 'p'), "big");
    suite->setObject(false, "widget.clock.enabled");
    {
        const FileSizeLimit full(before.size() + 100);
        EXPECT_FALSE(suite->synchronize());
    }
    EXPECT_EQ(readFile(suite->filePath()), before);
    EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"group.test.json"}); // no temporary left
    EXPECT_EQ(suite->boolForKey("widget.clock.enabled"), false);

    ASSERT_TRUE(suite->synchronize());
    auto reopened = DefaultsSuite::open("group.test", dir.path());
    EXPECT_EQ(reopened->boolForKey("widget.clock.enabled"), false);
    EXPECT_EQ(reopened->stringForKey("big"), QString(2000, 'p'));
}

TEST(DefaultsSuite, ValueSetAgainAsItWasWritesNothing)
{
    QTemporaryDir dir;
    auto suite = DefaultsSuite::open("group.test", dir.path());
    suite->setObject(true, "a");
    ASSERT_TRUE(suite->synchronize());
    // Stands for the file as written; a second write would replace it.
    QFile f(suite->filePath());
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("{\"k\":\"a\",\"bool\":true}\n{\"k\":\"mark\",\"bool\":true}\n");
    f.close();
    suite->setObject(true, "a");
    EXPECT_TRUE(suite->synchronize());
    EXPECT_TRUE(DefaultsSuite::open("group.test", dir.path())->boolForKey("mark"));
    suite->setObject(false, "a");
    EXPECT_TRUE(suite->synchronize());
    auto again = DefaultsSuite::open("group.test", dir.path());
    EXPECT_EQ(again->boolForKey("a"), false);
    EXPECT_FALSE(again->boolForKey("mark"));
}

#include "SettingsManager.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

namespace {

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

QJsonObject parsed(const QByteArray& bytes)
{
    return QJsonDocument::fromJson(bytes).object();
}

} // namespace

TEST(SharedWidgetData, EncodingLeavesAbsentFieldsOut)
{
    struct Case {
        const char* what;
        SharedWidgetData data;
        QJsonObject expected;
    };
    const QList<Case> cases = {
        {"nothing", {}, {}},
        {"empty battery list", {QList<BatteryDevice>{}, {}, {}, {}}, {{"battery", QJsonArray()}}},
        {"weather with only city",
         {{}, {}, WeatherData{"Milano", {}, {}, {}}, {}},
         {{"weather", QJsonObject{{"city", "Milano"}}}}},
        {"music not playing", {{}, {}, {}, MusicData{}}, {{"music", QJsonObject{{"playing", false}}}}},
        {"complete",
         {QList<BatteryDevice>{{"macbook", "MacBook", 87, true, "macbook"},
                               {"magic-mouse", "Magic Mouse", 64, false, "mouse"}},
          "analog", WeatherData{"Milano", 18.4, 2, 17.1}, MusicData{"t", "a", "http://x/c.jpg", "spotify", true}},
         {{"battery",
           QJsonArray{
               QJsonObject{
                   {"id", "macbook"}, {"name", "MacBook"}, {"percent", 87}, {"charging", true}, {"type", "macbook"}},
               QJsonObject{{"id", "magic-mouse"},
                           {"name", "Magic Mouse"},
                           {"percent", 64},
                           {"charging", false},
                           {"type", "mouse"}}}},
          {"clockStyle", "analog"},
          {"weather", QJsonObject{{"city", "Milano"}, {"temp", 18.4}, {"code", 2}, {"apparent", 17.1}}},
          {"music", QJsonObject{{"track", "t"},
                                {"artist", "a"},
                                {"artwork", "http://x/c.jpg"},
                                {"source", "spotify"},
                                {"playing", true}}}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        const auto bytes = c.data.encode();
        ASSERT_TRUE(bytes);
        EXPECT_EQ(parsed(*bytes), c.expected);
        EXPECT_FALSE(bytes->contains("null"));
        EXPECT_FALSE(bytes->contains(' ') && !c.expected.contains("battery")); // compact
        EXPECT_EQ(SharedWidgetData::decode(*bytes), c.data);
    }
}

TEST(SharedWidgetData, BatteryRowsNeedEveryField)
{
    EXPECT_FALSE(BatteryDevice::fromJsonObject(QJsonObject{{"id", "a"}, {"name", "A"}, {"percent", 1}, {"type", "x"}}));
    EXPECT_FALSE(BatteryDevice::fromJsonObject(
        QJsonObject{{"id", "a"}, {"name", "A"}, {"percent", 1.5}, {"charging", false}, {"type", "x"}}));
}

TEST(SharedWidgetData, FileHasClockStyleOnlyInTheWrittenCopy)
{
    QTemporaryDir dir;
    SettingsManager s(DefaultsSuite::open(SettingsManager::suiteName, dir.path()));
    const QString path = SettingsManager::sharedDataFilePath();
    QFile::remove(path);
    QDir(QDir::homePath() + "/Library").removeRecursively(); // the container folder is made on demand
    s.updateSharedWidgetData();
    const QByteArray first = readFile(path);
    EXPECT_EQ(parsed(first), (QJsonObject{{"clockStyle", "analog"}}));
    EXPECT_FALSE(first.endsWith('\n'));

    auto data = s.sharedData();
    data.weather = WeatherData{"Milano", 18.4, 2, std::nullopt};
    s.setSharedData(data);
    s.setClockStyle("digital");
    s.updateSharedWidgetData();
    EXPECT_EQ(parsed(readFile(path)),
              (QJsonObject{{"clockStyle", "digital"},
                           {"weather", QJsonObject{{"city", "Milano"}, {"temp", 18.4}, {"code", 2}}}}));
    EXPECT_FALSE(s.sharedData().clockStyle);

    // A number JSON cannot hold leaves the old file as it was.
    const QByteArray before = readFile(path);
    data.weather->temp = std::numeric_limits<double>::infinity();
    s.setSharedData(data);
    s.updateSharedWidgetData();
    EXPECT_EQ(readFile(path), before);

    // A shorter snapshot overwrites the whole file.
    s.setSharedData({});
    s.updateSharedWidgetData();
    EXPECT_EQ(parsed(readFile(path)), (QJsonObject{{"clockStyle", "digital"}}));

    // The same snapshot again leaves the file untouched.
    const QDateTime old(QDate(2001, 1, 1), QTime(0, 0), Qt::UTC);
    {
        QFile f(path);
        ASSERT_TRUE(f.open(QIODevice::ReadWrite) && f.setFileTime(old, QFileDevice::FileModificationTime));
    }
    s.updateSharedWidgetData();
    EXPECT_EQ(QFileInfo(path).lastModified(), old);
}

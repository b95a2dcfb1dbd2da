#include "SettingsManager.h"

#include <QDir>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <csignal>
#include <gtest/gtest.h>
#include <sys/resource.h>

namespace {

QByteArray readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

std::unique_ptr<SettingsManager> openStore(const QTemporaryDir& dir, const QString& suite = SettingsManager::suiteName)
{
    return std::make_unique<SettingsManager>(DefaultsSuite::open(suite, dir.path()));
}

// Every setting of a store as text, so two stores compare in one line.
QStringList reading(const SettingsManager& s)
{
    QStringList out;
    const QMetaObject* meta = s.metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        const QVariant v = meta->property(i).read(&s);
        out << QString(meta->property(i).name()) + "=" +
                   (v.typeId() == QMetaType::QStringList ? v.toStringList().join('|') : v.toString());
    }
    out << "weather=" + s.weatherSettings().toJson();
    for (const QString kind : {"clock", "weather", "battery", "music"})
        if (const auto p = s.position(kind))
            out << kind + " at " + p->toJson();
    return out;
}

} // namespace

TEST(SettingsManager, EachSetterIsReadBackByASecondStart)
{
    QTemporaryDir dir;
    auto s = openStore(dir);
    QSignalSpy toggled(s.get(), &SettingsManager::widgetEnabledChanged);
    QSignalSpy clickThrough(s.get(), &SettingsManager::clickThroughChanged);
    QSignalSpy resized(s.get(), &SettingsManager::widgetSizeChanged);
    const auto hideAllDevices = [&] {
        for (const QString key : {"macbook", "watch", "mouse", "airpods"})
            s->setDeviceVisible(key, false);
    };
    const auto rome = [&] { s->saveWeatherSettings({true, "Roma", 41.9, 12.5}); };
    const auto place = [&] { s->setPosition(Position{12.5, -30}, "music"); };
    // The device list passes through the empty list and a one-element one, easily read back wrong.
    const QList<std::pair<std::function<void()>, const char*>> steps = {
        {[&] { s->setWidgetEnabled("music", true); }, "musicEnabled=true"},
        {[&] { s->setClickThrough("battery", true); }, "batteryClickThrough=true"},
        {[&] { s->setWidgetSize("clock", "medium"); }, "clockSize=medium"},
        {[&] { s->setClockFace("digital"); }, "clockStyle=digital"},
        {[&] { s->setTheme("opaque"); }, "glassTheme=opaque"},
        {hideAllDevices, "batteryVisibleDevices="},
        {[&] { s->setDeviceVisible("mouse", true); }, "batteryVisibleDevices=mouse"},
        {[&] { s->setDeviceVisible("airpods", true), s->setDeviceVisible("mouse", true); },
         "batteryVisibleDevices=mouse|airpods"},
        {rome, R"(weather={"city":"Roma","lat":41.9,"lon":12.5,"useManual":true})"},
        {place, R"(music at {"x":12.5,"y":-30})"},
        {[&] { s->setPosition(std::nullopt, "music"); }, nullptr},
        {[&] { s->setWidgetEnabled("calendar", true); }, nullptr}, // not a widget: nothing stored
    };
    for (const auto& [step, expected] : steps) {
        SCOPED_TRACE(expected ? expected : "removed, or not a widget");
        step();
        const QStringList after = reading(*s);
        EXPECT_EQ(reading(*openStore(dir)), after);
        EXPECT_TRUE(!expected || after.contains(expected)) << after.join(", ").toStdString();
    }
    EXPECT_EQ(QList<qsizetype>({toggled.size(), clickThrough.size(), resized.size()}), QList<qsizetype>({1, 1, 1}));
}

TEST(SettingsManager, DamagedLinesAndValuesFallBackToTheDefaultsOneByOne)
{
    QTemporaryDir dir;
    QFile f(dir.filePath(QString(SettingsManager::suiteName) + ".json"));
    ASSERT_TRUE(f.open(QIODevice::WriteOnly));
    f.write("\x01\xff{\"k\":\"widget.weather.enabled\",\"bool\":true}\nnot json\n"
            "{\"k\":\"widget.clock.size\",\"bool\":true}\n{\"k\":\"widget.clock.enabled\",\"string\":\"true\"}\n"
            "{\"k\":\"widget.battery.visibleDevices\",\"list\":[1]}\n{\"k\":\"widget.clock.position\",\"data\":\"*\"}\n"
            "{\"k\":\"weather\",\"data\":\"" +
            QByteArray(R"({"city":"Roma","lat":1})").toBase64() + "\"}\n{\"k\":\"widget.music.size\",\"string\":\"" +
            QByteArray(1 << 20, 'x') +
            "\"}\n{\"k\":\"glass-theme\",\"string\":\"opaque\"}\n{\"k\":\"widget.music.enabled\",\"bo");
    f.close();
    QStringList expected = reading(*openStore(dir, "empty"));
    expected.replace(expected.indexOf("glassTheme=transparent"), "glassTheme=opaque");
    EXPECT_EQ(reading(*openStore(dir)), expected);
    EXPECT_TRUE(expected.contains("musicSize=medium") && expected.contains("clockStyle=analog") &&
                expected.contains("batteryVisibleDevices=macbook|watch|mouse|airpods"));
}

TEST(DefaultsSuite, SaveCutOffPartWayLeavesTheOldFileWholeAndRetriesLater)
{
    // A full disk or a quota stops the write before the first byte, inside the old length or past it:
    // a file size limit does the same without root (SIGXFSZ ignored, the write fails with EFBIG).
    std::signal(SIGXFSZ, SIG_IGN);
    for (const rlim_t room : {0, 30, 200}) {
        SCOPED_TRACE(room);
        QTemporaryDir dir;
        auto suite = DefaultsSuite::open("s", dir.path());
        suite->setObject(QString(100, 'o'), "k");
        ASSERT_TRUE(suite->synchronize());
        const QByteArray before = readFile(dir.filePath("s.json"));
        suite->setObject(QString(2000, 'n'), "k");
        rlimit saved{};
        getrlimit(RLIMIT_FSIZE, &saved);
        const rlimit full{room, saved.rlim_max};
        setrlimit(RLIMIT_FSIZE, &full);
        EXPECT_FALSE(suite->synchronize());
        setrlimit(RLIMIT_FSIZE, &saved);
        EXPECT_EQ(readFile(dir.filePath("s.json")), before);
        EXPECT_EQ(QDir(dir.path()).entryList(QDir::Files), QStringList{"s.json"}); // no temporary left
        ASSERT_TRUE(suite->synchronize());
        EXPECT_EQ(DefaultsSuite::open("s", dir.path())->stringForKey("k"), QString(2000, 'n'));
    }
}

TEST(SharedWidgetData, EachModelsPartReachesTheFileWhichHoldsOnlyTheLatestSnapshot)
{
    QTemporaryDir dir;
    auto s = openStore(dir);
    const QString path = SettingsManager::sharedDataFilePath();
    QDir(QDir::homePath() + "/Library").removeRecursively(); // the container folder is made on demand
    s->setBatteryData({{"magic-mouse", "Magic Mouse", 64, false, "mouse"}});
    s->setWeatherData({"Milano", 18.4, 2, std::nullopt});
    s->setMusicData({"t", "a", std::nullopt, "spotify", true});
    s->setClockFace("digital");
    EXPECT_EQ(readFile(path),
              R"({"battery":[{"charging":false,"id":"magic-mouse","name":"Magic Mouse","percent":64,"type":"mouse"}],)"
              R"("clockStyle":"digital","music":{"artist":"a","playing":true,"source":"spotify","track":"t"},)"
              R"("weather":{"city":"Milano","code":2,"temp":18.4}})");
    // A number JSON cannot hold leaves the old file; a shorter snapshot replaces all of it.
    const QByteArray before = readFile(path);
    s->setWeatherData({std::nullopt, std::numeric_limits<double>::infinity(), 1, 2});
    EXPECT_EQ(readFile(path), before);
    s->setSharedData({});
    s->setMusicData({});
    EXPECT_EQ(readFile(path), R"({"clockStyle":"digital","music":{"playing":false}})");
}

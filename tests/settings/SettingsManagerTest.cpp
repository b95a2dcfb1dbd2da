#include "SettingsManager.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

struct Store {
    QTemporaryDir dir;
    std::unique_ptr<SettingsManager> open()
    {
        return std::make_unique<SettingsManager>(DefaultsSuite::open(SettingsManager::suiteName, dir.path()));
    }
    std::unique_ptr<DefaultsSuite> suite() { return DefaultsSuite::open(SettingsManager::suiteName, dir.path()); }
};

} // namespace

TEST(SettingsManager, EmptySuiteGivesTheDefaults)
{
    Store store;
    auto s = store.open();
    for (bool flag :
         {s->clockEnabled(), s->weatherEnabled(), s->batteryEnabled(), s->musicEnabled(), s->clockClickThrough(),
          s->weatherClickThrough(), s->batteryClickThrough(), s->musicClickThrough()})
        EXPECT_FALSE(flag);
    EXPECT_EQ(s->clockSize(), "small");
    EXPECT_EQ(s->weatherSize(), "small");
    EXPECT_EQ(s->batterySize(), "small");
    EXPECT_EQ(s->musicSize(), "medium");
    EXPECT_EQ(s->clockStyle(), "analog");
    EXPECT_EQ(s->glassTheme(), "transparent");
    EXPECT_EQ(s->weatherSettings(), WeatherSettings());
    EXPECT_EQ(s->batteryVisibleDevices(), (QStringList{"macbook", "watch", "mouse", "airpods"}));
    EXPECT_FALSE(s->clockPosition() || s->weatherPosition() || s->batteryPosition() || s->musicPosition());
    EXPECT_FALSE(s->sharedData().battery || s->sharedData().weather || s->sharedData().music);
}

TEST(SettingsManager, EveryKeyRoundTripsThroughARestart)
{
    Store store;
    {
        auto s = store.open();
        const QList<std::pair<QString, QVariant>> writes = {
            {"widget.clock.enabled", true},
            {"widget.weather.enabled", true},
            {"widget.battery.enabled", true},
            {"widget.music.enabled", true},
            {"widget.clock.clickThrough", true},
            {"widget.weather.clickThrough", true},
            {"widget.battery.clickThrough", true},
            {"widget.music.clickThrough", true},
            {"widget.clock.size", "medium"},
            {"widget.weather.size", "medium"},
            {"widget.battery.size", "large"},
            {"widget.music.size", "small"},
            {"widget.clock.style", "digital"},
            {"glass-theme", "opaque"},
            {"widget.battery.visibleDevices", QStringList{}},
        };
        for (const auto& [key, value] : writes)
            s->saveSetting(value, key);
        s->saveWeatherSettings(WeatherSettings{true, "Roma, Italia", 41.89, 12.5});
        s->setPosition(Position{12.5, -30}, "music");
    }
    auto s = store.open();
    EXPECT_TRUE(s->clockEnabled() && s->weatherEnabled() && s->batteryEnabled() && s->musicEnabled());
    EXPECT_TRUE(s->clockClickThrough() && s->weatherClickThrough() && s->batteryClickThrough() &&
                s->musicClickThrough());
    EXPECT_EQ(s->clockSize(), "medium");
    EXPECT_EQ(s->weatherSize(), "medium");
    EXPECT_EQ(s->batterySize(), "large"); // kept as given, never checked
    EXPECT_EQ(s->musicSize(), "small");
    EXPECT_EQ(s->clockStyle(), "digital");
    EXPECT_EQ(s->glassTheme(), "opaque");
    EXPECT_TRUE(s->batteryVisibleDevices().isEmpty());
    EXPECT_EQ(s->weatherSettings(), (WeatherSettings{true, "Roma, Italia", 41.89, 12.5}));
    EXPECT_EQ(s->musicPosition(), (Position{12.5, -30}));
    EXPECT_FALSE(s->clockPosition());
}

TEST(SettingsManager, AssigningAPropertyAloneWritesNothing)
{
    Store store;
    store.open()->setClockSize("medium");
    EXPECT_EQ(store.open()->clockSize(), "small");
}

TEST(SettingsManager, EveryAssignmentNotifiesAlsoAnEqualOne)
{
    Store store;
    auto s = store.open();
    QSignalSpy spy(s.get(), &SettingsManager::clockSizeChanged);
    s->setClockSize("small");
    s->setClockSize("small");
    EXPECT_EQ(spy.count(), 2);
    QSignalSpy all(s.get(), &SettingsManager::glassThemeChanged);
    s->loadSettings();
    EXPECT_EQ(all.count(), 1);
}

TEST(SettingsManager, SaveWeatherSettingsWritesTheSuiteBeforeObserversHearOfIt)
{
    Store store;
    auto s = store.open();
    std::optional<QByteArray> seenInSuite;
    QObject::connect(s.get(), &SettingsManager::weatherSettingsChanged,
                     [&] { seenInSuite = store.suite()->dataForKey("weather"); });
    const WeatherSettings w{true, "Milano, Italia", 45.46, 9.19};
    s->saveWeatherSettings(w);
    ASSERT_TRUE(seenInSuite);
    EXPECT_EQ(WeatherSettings::fromJson(*seenInSuite), w);
}

TEST(SettingsManager, BadStoredValuesFallBackWithoutTouchingOtherKeys)
{
    struct Case {
        const char* what;
        QString key;
        QVariant stored;
    };
    const QList<Case> cases = {
        {"weather not JSON", "weather", QByteArray("{nope")},
        {"weather without useManual", "weather", QByteArray(R"({"city":"Roma","lat":1,"lon":2})")},
        {"weather without city", "weather", QByteArray(R"({"useManual":true,"lat":1,"lon":2})")},
        {"weather with text lat", "weather", QByteArray(R"({"useManual":true,"city":"x","lat":"1"})")},
        {"weather stored as text", "weather", QString(R"({"useManual":true,"city":"x"})")},
        {"size stored as bool", "widget.clock.size", true},
        {"flag stored as text", "widget.clock.enabled", QString("true")},
        {"devices stored as text", "widget.battery.visibleDevices", QString("mouse")},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        Store store;
        {
            auto suite = store.suite();
            suite->setObject(c.stored, c.key);
            suite->setObject(QString("opaque"), "glass-theme");
            suite->synchronize();
        }
        auto s = store.open();
        EXPECT_EQ(s->weatherSettings(), WeatherSettings());
        EXPECT_EQ(s->clockSize(), "small");
        EXPECT_FALSE(s->clockEnabled());
        EXPECT_EQ(s->batteryVisibleDevices().size(), 4);
        EXPECT_EQ(s->glassTheme(), "opaque");
        // The bad bytes stay where they were.
        EXPECT_EQ(store.suite()->dataForKey(c.key),
                  c.stored.typeId() == QMetaType::QByteArray ? std::optional(c.stored.toByteArray()) : std::nullopt);
    }
}

TEST(SettingsManager, WeatherWithoutCoordinatesDecodes)
{
    const auto w = WeatherSettings::fromJson(R"({"useManual":true,"city":"Roma, Italia","extra":1})");
    ASSERT_TRUE(w);
    EXPECT_FALSE(w->lat || w->lon);
    EXPECT_EQ(QString(WeatherSettings{false, "x", {}, {}}.toJson()), R"({"city":"x","useManual":false})");
}

TEST(SettingsManager, PositionsReadTheSuiteEachTimeAndRemoveWithAbsent)
{
    Store store;
    auto s = store.open();
    s->setPosition(Position{500, 300}, "clock");
    EXPECT_EQ(s->clockPosition(), (Position{500, 300}));
    {
        auto other = store.suite();
        other->setObject(QByteArray(R"({"x":1})"), "widget.clock.position");
        other->synchronize();
    }
    EXPECT_EQ(store.open()->clockPosition(), std::nullopt); // undecodable reads as absent
    s->setPosition(std::nullopt, "clock");
    EXPECT_FALSE(store.suite()->dataForKey("widget.clock.position"));
    EXPECT_FALSE(s->clockPosition());
}

#include "WeatherWidgetModel.h"
#include "ReplayServer.h"
#include "WeatherFixtures.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

SettingsManager& settings()
{
    return SettingsManager::shared();
}

QByteArray sharedFile()
{
    QFile f(SettingsManager::sharedDataFilePath());
    return f.open(QIODevice::ReadOnly) ? f.readAll() : QByteArray();
}

// Every state change of a model, as text, in the order it happened.
struct Recorder {
    QStringList events;

    explicit Recorder(WeatherWidgetModel& m)
    {
        auto add = [this](const QString& e) { events << e; };
        QObject::connect(&m, &WeatherWidgetModel::loadingChanged,
                         [&m, add] { add(QString("loading=%1").arg(m.loading())); });
        QObject::connect(&m, &WeatherWidgetModel::connectionErrorChanged,
                         [&m, add] { add(QString("error=%1").arg(m.connectionError())); });
        QObject::connect(&m, &WeatherWidgetModel::cityNameChanged, [&m, add] { add("city=" + m.cityName()); });
        QObject::connect(&m, &WeatherWidgetModel::weatherDataChanged, [add] { add("data"); });
        QObject::connect(&m, &WeatherWidgetModel::glowColorChanged,
                         [&m, add] { add("glow=" + m.glowColor().name(QColor::HexArgb)); });
    }
    qsizetype count(const QString& e) const { return events.count(e); }
    // Waits until `n` loads have ended, one way or the other.
    bool waitForEnds(qsizetype n) const
    {
        return QTest::qWaitFor([&] { return count("loading=0") >= n; }, 10000);
    }
};

const QStringList firstSuccess = {"loading=1", "error=0", "city=Milan", "data", "loading=0", "glow=#99ffc832"};

class WeatherWidgetModelTest : public ::testing::Test {
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.listen());
        pointWeatherServicesAt(server.baseUrl());
        reset();
    }
    void TearDown() override { pointWeatherServicesAt(""); }

    void reset()
    {
        server.setJson("/json/", samples::ipMilan);
        server.setJson("/v1/forecast", samples::forecastMilan);
        settings().saveWeatherSettings(WeatherSettings{});
        settings().setSharedData({});
        QFile::remove(SettingsManager::sharedDataFilePath());
    }

    ReplayServer server;
};

} // namespace

TEST_F(WeatherWidgetModelTest, StartsLoadingWithNothingShown)
{
    WeatherWidgetModel model;
    EXPECT_TRUE(model.loading());
    EXPECT_FALSE(model.connectionError());
    EXPECT_EQ(model.cityName(), "MILANO");
    EXPECT_EQ(model.glowColor().alpha(), 0);
    EXPECT_FALSE(model.hasWeatherData());
    EXPECT_EQ(model.temperatureText(), "");
    EXPECT_TRUE(model.forecastRows().isEmpty());
    EXPECT_TRUE(server.requestLines().isEmpty()); // nothing before it is on screen
}

TEST_F(WeatherWidgetModelTest, FirstLoadFindsThePlaceByIpAndSharesTheWeather)
{
    WeatherWidgetModel model;
    Recorder rec(model);
    model.setActive(true);
    ASSERT_TRUE(rec.waitForEnds(1));
    EXPECT_EQ(rec.events, firstSuccess);

    EXPECT_EQ(model.temperatureText(), QString::fromUtf8("22°"));
    EXPECT_EQ(model.weatherEmoji(), QString::fromUtf8("\u26C5"));
    EXPECT_EQ(model.weatherDescription(), "Parz. nuvoloso");
    EXPECT_EQ(model.highLowText(), QString::fromUtf8("H:24° L:15°"));
    EXPECT_TRUE(model.hasDaily());
    const auto rows = model.forecastRows();
    ASSERT_EQ(rows.size(), 4);
    EXPECT_EQ(rows[0].toMap(), (QVariantMap{{"dayName", "Mar"},
                                            {"emoji", QString::fromUtf8("\U0001F327\uFE0F")},
                                            {"maxText", QString::fromUtf8("20°")},
                                            {"minText", QString::fromUtf8("14°")}}));

    const WeatherData expected{"Milan", 21.5, 2, 20.8};
    EXPECT_EQ(settings().sharedData().weather, expected);
    const auto file = QJsonDocument::fromJson(sharedFile()).object();
    EXPECT_EQ(file.value("weather").toObject(), expected.toJsonObject());
}

TEST_F(WeatherWidgetModelTest, TheLocationComesFromTheSettingsOnlyWithBothCoordinates)
{
    struct Case {
        WeatherSettings stored;
        QString city;
        bool askedIp;
        QByteArray coordinates;
    };
    const Case cases[] = {
        {{true, "Reggio nell'Emilia, Italia", 44.69825, 10.63125},
         "Reggio nell'Emilia",
         false,
         "latitude=44.69825&longitude=10.63125"},
        {{true, " Roma , Italia, EU", 41.9, 12.5}, " Roma ", false, "latitude=41.9&longitude=12.5"},
        {{true, "Roma, Italia", 41.9, std::nullopt}, "Milan", true, "latitude=45.4643&longitude=9.1895"},
        {{false, "Roma, Italia", 41.9, 12.5}, "Milan", true, "latitude=45.4643&longitude=9.1895"},
    };
    for (const auto& c : cases) {
        settings().saveWeatherSettings(c.stored);
        server.clearRequests();
        WeatherWidgetModel model;
        Recorder rec(model);
        model.setActive(true);
        ASSERT_TRUE(rec.waitForEnds(1)) << c.stored.city.toStdString();
        EXPECT_EQ(model.cityName(), c.city);
        EXPECT_EQ(settings().sharedData().weather->city, c.city);
        EXPECT_EQ(server.requestLines().size(), c.askedIp ? 2 : 1);
        EXPECT_EQ(server.requestLines().first().startsWith("GET /json/"), c.askedIp);
        EXPECT_TRUE(server.requestLines().last().startsWith("GET /v1/forecast?" + c.coordinates + "&current="))
            << server.requestLines().last().toStdString();
    }
}

TEST_F(WeatherWidgetModelTest, AFailedReloadKeepsWhatWasShown)
{
    WeatherWidgetModel model;
    Recorder rec(model);
    model.setActive(true);
    ASSERT_TRUE(rec.waitForEnds(1));
    const QByteArray fileBefore = sharedFile();
    const auto shared = settings().sharedData();
    ASSERT_FALSE(fileBefore.isEmpty());

    server.setJson("/v1/forecast", samples::openMeteoError, 500);
    rec.events.clear();
    model.loadWeatherData();
    ASSERT_TRUE(rec.waitForEnds(1));
    EXPECT_EQ(rec.events, (QStringList{"loading=1", "error=0", "error=1", "loading=0"}));
    EXPECT_TRUE(model.hasWeatherData());
    EXPECT_EQ(model.cityName(), "Milan");
    EXPECT_EQ(model.temperatureText(), QString::fromUtf8("22°"));
    EXPECT_EQ(model.glowColor().name(QColor::HexArgb), "#99ffc832");
    EXPECT_EQ(settings().sharedData(), shared);
    EXPECT_EQ(sharedFile(), fileBefore);

    // The next success brings the data back, here without a daily block.
    server.setJson("/v1/forecast", samples::forecastNoDaily);
    rec.events.clear();
    model.loadWeatherData();
    ASSERT_TRUE(rec.waitForEnds(1));
    EXPECT_EQ(rec.events, (QStringList{"loading=1", "error=0", "city=Milan", "data", "loading=0", "glow=#ffffc832"}));
    EXPECT_FALSE(model.connectionError());
    EXPECT_EQ(model.temperatureText(), QString::fromUtf8("-4°"));
    EXPECT_EQ(model.weatherDescription(), "Sereno");
    EXPECT_FALSE(model.hasDaily());
    EXPECT_EQ(model.highLowText(), "");
    EXPECT_TRUE(model.forecastRows().isEmpty());
    EXPECT_EQ(settings().sharedData().weather, (WeatherData{"Milan", -3.5, 0, -7.0}));
}

TEST_F(WeatherWidgetModelTest, AFailureBeforeAnyDataShowsOnlyTheError)
{
    struct Case {
        const char* what;
        std::function<void()> breakServer;
    };
    // One failure at each of the two steps; the kinds of failure are the monitor's to test.
    const Case cases[] = {
        {"ip reply without fields", [this] { server.setJson("/json/", samples::ipFail); }},
        {"forecast not JSON",
         [this] {
             server.setReply("/v1/forecast", {502, "Bad Gateway", "text/html"});
         }},
    };
    for (const auto& c : cases) {
        reset();
        c.breakServer();
        WeatherWidgetModel model;
        Recorder rec(model);
        model.setActive(true);
        ASSERT_TRUE(rec.waitForEnds(1)) << c.what;
        EXPECT_EQ(rec.events, (QStringList{"loading=1", "error=0", "error=1", "loading=0"})) << c.what;
        EXPECT_FALSE(model.hasWeatherData()) << c.what;
        EXPECT_EQ(model.cityName(), "MILANO") << c.what;
        EXPECT_FALSE(settings().sharedData().weather) << c.what;
        EXPECT_TRUE(sharedFile().isEmpty()) << c.what;
    }
}

TEST_F(WeatherWidgetModelTest, OnlyACityTextOrChoiceChangeReloads)
{
    settings().saveWeatherSettings({true, "Roma, Italia", 41.9, 12.5});
    WeatherWidgetModel model;
    Recorder rec(model);
    model.setActive(true);
    ASSERT_EQ(rec.count("loading=1"), 1);

    struct Case {
        const char* what;
        WeatherSettings next;
        qsizetype loads;
    };
    const Case cases[] = {
        {"coordinates only", {true, "Roma, Italia", 41.0, 12.0}, 0},
        {"coordinates dropped", {true, "Roma, Italia", std::nullopt, std::nullopt}, 0},
        {"city text", {true, "Roma, Lazio", 41.0, 12.0}, 1},
        {"automatic", {false, "Roma, Lazio", 41.0, 12.0}, 1},
        {"manual", {true, "Roma, Lazio", 41.0, 12.0}, 1},
        {"city and choice at once", {false, "Napoli, Italia", 40.8, 14.2}, 2},
    };
    for (const auto& c : cases) {
        const auto before = rec.count("loading=1");
        settings().saveWeatherSettings(c.next);
        EXPECT_EQ(rec.count("loading=1") - before, c.loads) << c.what;
    }

    // Off screen a change starts nothing; coming back on screen loads once.
    ASSERT_TRUE(rec.waitForEnds(rec.count("loading=1")));
    model.setActive(false);
    const auto before = rec.count("loading=1");
    settings().saveWeatherSettings({true, "Torino, Italia", 45.07, 7.69});
    EXPECT_EQ(rec.count("loading=1"), before);
    model.setActive(true);
    EXPECT_EQ(rec.count("loading=1"), before + 1);
    ASSERT_TRUE(rec.waitForEnds(before + 1));
    EXPECT_EQ(model.cityName(), "Torino");
}

TEST_F(WeatherWidgetModelTest, ThePeriodicReloadRunsOnlyWhileActive)
{
    WeatherWidgetModel model;
    Recorder rec(model);
    EXPECT_FALSE(model.refreshScheduled());
    model.setRefreshInterval(50);
    model.setActive(true);
    EXPECT_TRUE(model.refreshScheduled());
    ASSERT_TRUE(QTest::qWaitFor([&] { return rec.count("loading=1") >= 4; }, 10000));
    model.setActive(false);
    EXPECT_FALSE(model.refreshScheduled());
}

TEST_F(WeatherWidgetModelTest, TheLastLoadToFinishSetsTheState)
{
    auto& monitor = WeatherMonitor::shared();
    const int normalTimeout = monitor.transferTimeout();
    monitor.setTransferTimeout(500);
    settings().saveWeatherSettings({true, "Milano, Italia", 45.46, 9.18});
    server.setHang("/v1/forecast");
    WeatherWidgetModel model;
    Recorder rec(model);
    QSignalSpy requests(&server, &ReplayServer::requestReceived);
    model.setActive(true); // this one will time out
    ASSERT_TRUE(requests.wait(5000));
    server.setJson("/v1/forecast", samples::forecastMilan);
    model.loadWeatherData(); // this one succeeds first
    ASSERT_TRUE(rec.waitForEnds(2));
    EXPECT_EQ(rec.events, (QStringList{"loading=1", "error=0", "loading=1", "error=0", "city=Milano", "data",
                                       "loading=0", "glow=#99ffc832", "error=1", "loading=0"}));
    EXPECT_TRUE(model.connectionError());
    EXPECT_TRUE(model.hasWeatherData());
    EXPECT_EQ(settings().sharedData().weather->city, "Milano");
    monitor.setTransferTimeout(normalTimeout);
}

TEST_F(WeatherWidgetModelTest, AClosedWidgetIgnoresLateReplies)
{
    auto model = std::make_unique<WeatherWidgetModel>();
    QSignalSpy requests(&server, &ReplayServer::requestReceived);
    model->setActive(true);
    ASSERT_TRUE(requests.wait(5000));
    model.reset();
    // The forecast request of the closed widget is never made, and nothing is shared.
    const auto answer = [] {
        bool done = false;
        WeatherMonitor::shared().fetchIPLocation(nullptr, [&](const auto&) { done = true; });
        return QTest::qWaitFor([&] { return done; }, 5000);
    }();
    EXPECT_TRUE(answer);
    EXPECT_EQ(server.requestLines().size(), 2);
    EXPECT_FALSE(server.requestLines().last().startsWith("GET /v1/forecast"));
    EXPECT_FALSE(settings().sharedData().weather);
}

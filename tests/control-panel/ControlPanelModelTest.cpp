#include "ControlPanelModel.h"
#include "ReplayServer.h"
#include "SettingsManager.h"
#include "WeatherFixtures.h"
#include "XSession.h"

#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <gtest/gtest.h>

namespace {

// Records each callback together with what the store held at that moment.
struct Calls {
    QStringList log;
    ControlPanelModel model;
    Calls()
    {
        auto& s = SettingsManager::shared();
        model.setCallbacks(
            [this, &s](const QString& n, bool v) {
                log << QString("toggle %1 %2 prop=%3")
                           .arg(n)
                           .arg(v)
                           .arg(s.property((n + "Enabled").toLatin1()).toBool());
            },
            [this, &s](const QString& n, const QString& size) {
                s.loadSettings(); // what the suite holds, not just memory
                log << QString("resize %1 %2 stored=%3").arg(n, size, s.property((n + "Size").toLatin1()).toString());
            },
            [this, &s](const QString& n, bool v) {
                log << QString("clickThrough %1 %2 prop=%3")
                           .arg(n)
                           .arg(v)
                           .arg(s.property((n + "ClickThrough").toLatin1()).toBool());
            });
    }
};

void resetStore()
{
    auto& s = SettingsManager::shared();
    s.saveSetting(QStringList{"macbook", "watch", "mouse", "airpods"}, "widget.battery.visibleDevices");
    s.saveSetting("small", "widget.clock.size");
    s.saveWeatherSettings(WeatherSettings());
    s.loadSettings();
}

} // namespace

TEST(ControlPanelModel, EachControlAssignsStoresAndCallsBackInOrder)
{
    resetStore();
    Calls c;
    c.model.setWidgetEnabled("clock", true);
    c.model.setClickThrough("music", true);
    c.model.setWidgetSize("clock", "medium");
    EXPECT_EQ(c.log, (QStringList{"toggle clock 1 prop=1", "clickThrough music 1 prop=1",
                                  "resize clock medium stored=medium"}));
    // Switches leave the writing to the application.
    SettingsManager::shared().loadSettings();
    EXPECT_FALSE(SettingsManager::shared().clockEnabled());
}

TEST(ControlPanelModel, ClockStyleIsStoredAndReachesTheSharedFile)
{
    resetStore();
    Calls c;
    c.model.setClockStyle("digital");
    QFile f(SettingsManager::sharedDataFilePath());
    ASSERT_TRUE(f.open(QIODevice::ReadOnly));
    EXPECT_EQ(QJsonDocument::fromJson(f.readAll()).object().value("clockStyle").toString(), "digital");
    SettingsManager::shared().loadSettings();
    EXPECT_EQ(SettingsManager::shared().clockStyle(), "digital");
    c.model.setGlassTheme("opaque");
    SettingsManager::shared().loadSettings();
    EXPECT_EQ(SettingsManager::shared().glassTheme(), "opaque");
    EXPECT_TRUE(c.log.isEmpty());
}

TEST(ControlPanelModel, DeviceCheckboxesKeepTheOrderOfTicking)
{
    resetStore();
    Calls c;
    auto& s = SettingsManager::shared();
    for (const QString key : {"macbook", "watch", "mouse", "airpods"})
        c.model.setDeviceVisible(key, false);
    s.loadSettings();
    EXPECT_TRUE(s.batteryVisibleDevices().isEmpty());
    c.model.setDeviceVisible("airpods", true);
    c.model.setDeviceVisible("macbook", true);
    c.model.setDeviceVisible("macbook", true); // no duplicate
    s.loadSettings();
    EXPECT_EQ(s.batteryVisibleDevices(), (QStringList{"airpods", "macbook"}));
}

TEST(ControlPanelModel, LocationSwitchAndAppearFollowTheStore)
{
    resetStore();
    auto& s = SettingsManager::shared();
    s.saveWeatherSettings(WeatherSettings{true, "Roma, Italia", 41.9, 12.5});
    ControlPanelModel model;
    EXPECT_TRUE(model.weatherAutoMode()); // before appearing: the initial values
    model.appear();
    EXPECT_FALSE(model.weatherAutoMode());
    EXPECT_EQ(model.manualCity(), "Roma, Italia");
    model.setWeatherAutoMode(true); // city and coordinates stay for the way back
    s.loadSettings();
    EXPECT_EQ(s.weatherSettings(), (WeatherSettings{false, "Roma, Italia", 41.9, 12.5}));
    model.setWeatherAutoMode(false);
    s.loadSettings();
    EXPECT_EQ(s.weatherSettings(), (WeatherSettings{true, "Roma, Italia", 41.9, 12.5}));
}

TEST(ControlPanelModel, CitySearchOutcomes)
{
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    struct Case {
        const char* what;
        ReplayServer::Reply reply;
        QString status;
        QColor color;
        bool stored;
    };
    const QList<Case> cases = {
        {"found",
         {200, samples::geoMilano},
         QString::fromUtf8("✓ Impostato su Milano, Italia"),
         ControlPanelModel::statusGreen,
         true},
        {"no results key",
         {200, samples::geoNone},
         QString::fromUtf8("Città non trovata"),
         ControlPanelModel::statusRed,
         false},
        {"empty results",
         {200, samples::geoEmpty},
         QString::fromUtf8("Città non trovata"),
         ControlPanelModel::statusRed,
         false},
        {"server error page",
         {500, "<html>oops</html>", "text/html"},
         "Errore di rete",
         ControlPanelModel::statusRed,
         false},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        resetStore();
        server.clearRequests();
        server.setReply("/v1/search", c.reply);
        ControlPanelModel model;
        model.setManualCity("  Milano \n");
        model.saveManualLocation();
        EXPECT_TRUE(model.searchInProgress());
        EXPECT_EQ(model.geoStatusText(), QString::fromUtf8("Ricerca in corso…"));
        EXPECT_EQ(model.geoStatusColor(), ControlPanelModel::systemGray);
        ASSERT_TRUE(XSession::waitFor([&] { return !model.searchInProgress(); }, 10000));
        EXPECT_EQ(model.geoStatusText(), c.status);
        EXPECT_EQ(model.geoStatusColor(), c.color);
        EXPECT_EQ(model.manualCity(), "  Milano \n"); // the field keeps what was typed
        ASSERT_EQ(server.requestLines().size(), 1);
        EXPECT_TRUE(server.requestLines().first().contains("name=Milano&count=1"));
        SettingsManager::shared().loadSettings();
        const WeatherSettings w = SettingsManager::shared().weatherSettings();
        if (c.stored)
            EXPECT_EQ(w, (WeatherSettings{true, "Milano, Italia", 45.46427, 9.18951}));
        else
            EXPECT_EQ(w, WeatherSettings());
    }
    pointWeatherServicesAt({});
}

TEST(ControlPanelModel, BlankCityDoesNothing)
{
    ControlPanelModel model;
    model.setManualCity(" \t ");
    QSignalSpy status(&model, &ControlPanelModel::geoStatusChanged);
    model.saveManualLocation();
    EXPECT_FALSE(model.searchInProgress());
    EXPECT_EQ(status.count(), 0);
    EXPECT_TRUE(model.geoStatusText().isEmpty());
}

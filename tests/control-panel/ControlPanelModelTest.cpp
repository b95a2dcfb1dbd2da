#include "ControlPanelModel.h"
#include "ReplayServer.h"
#include "SettingsManager.h"
#include "WeatherFixtures.h"
#include "XSession.h"

#include <gtest/gtest.h>

namespace {

// What a second start of the app would read.
WeatherSettings reloaded()
{
    SettingsManager::shared().loadSettings();
    return SettingsManager::shared().weatherSettings();
}

} // namespace

TEST(ControlPanelModel, LocationSwitchAndCitySearchOutcomes)
{
    // The switch shows the stored choice and stores its negation, keeping the city for the way back.
    const WeatherSettings before{true, "Prima", 1, 2};
    SettingsManager::shared().saveWeatherSettings(before);
    ControlPanelModel panel;
    panel.appear();
    EXPECT_EQ(std::pair(panel.weatherAutoMode(), panel.manualCity()), std::pair(false, QString("Prima")));
    panel.setWeatherAutoMode(true);
    EXPECT_EQ(reloaded(), (WeatherSettings{false, "Prima", 1, 2}));

    ReplayServer server;
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    const WeatherSettings milano{true, "Milano, Italia", 45.46427, 9.18951};
    const QList<std::tuple<QString, ReplayServer::Reply, QString, WeatherSettings>> cases = {
        {"  Milano \n", {200, samples::geoMilano}, "✓ Impostato su Milano, Italia", milano},
        {"Milano", {200, samples::geoEmpty}, "Città non trovata", before},
        {"Milano", {500, "<html>oops</html>", "text/html"}, "Errore di rete", before},
        {" \t ", {}, "", before}, // nothing to look for: no request
    };
    for (const auto& [typed, reply, status, stored] : cases) {
        SCOPED_TRACE(status.toStdString());
        SettingsManager::shared().saveWeatherSettings(before);
        server.clearRequests();
        server.setReply("/v1/search", reply);
        ControlPanelModel model;
        model.setManualCity(typed);
        model.saveManualLocation();
        ASSERT_TRUE(XSession::waitFor([&] { return !model.searchInProgress(); }, 10000));
        EXPECT_EQ(model.geoStatusText(), status);
        EXPECT_EQ(model.geoStatusColor(), stored == milano   ? ControlPanelModel::statusGreen
                                          : status.isEmpty() ? ControlPanelModel::systemGray
                                                             : ControlPanelModel::statusRed);
        EXPECT_EQ(server.requestLines().size(), typed.trimmed().isEmpty() ? 0 : 1);
        EXPECT_EQ(reloaded(), stored);
    }
    pointWeatherServicesAt({});
}

#include "OutsideData.h"
#include "ReplayServer.h"
#include "WeatherFixtures.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

// Runs a call ('i'p location, city 's'earch or 'f'orecast) to its one answer: the error kind, or
// what it brought.
std::string ask(char call, const QString& name = {}, double lat = 0, double lon = 0)
{
    int calls = 0;
    QString answer;
    auto done = [&](const auto& r) {
        using T = std::decay_t<decltype(std::get<0>(r))>;
        ++calls;
        if (const auto* e = std::get_if<WeatherError>(&r))
            answer = QStringList{"bad url", "transport", "decoding"}.at(int(e->kind));
        else if constexpr (std::is_same_v<T, std::optional<WeatherSettings>>) {
            const auto& s = std::get<0>(r);
            answer = s ? QString("%1 %2 %3").arg(s->city).arg(*s->lat).arg(*s->lon) : "none";
        } else
            answer = "ok";
    };
    auto& monitor = WeatherMonitor::shared();
    call == 'i'   ? monitor.fetchIPLocation(nullptr, done)
    : call == 's' ? monitor.searchCityCoordinates(name, nullptr, done)
                  : monitor.fetchWeather(lat, lon, nullptr, done);
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls > 0; }, 20000));
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 1); // and never from inside the call, which the wait would not need
    return answer.toStdString();
}

} // namespace

TEST(WeatherMonitor, HostsRequestsRepliesAndFailures)
{
    using S = WeatherMonitor::Service;
    pointWeatherServicesAt("");
    EXPECT_EQ(QStringList({WeatherMonitor::baseUrl(S::IpApi), WeatherMonitor::baseUrl(S::Geocoding),
                           WeatherMonitor::baseUrl(S::Forecast)}),
              QStringList({"http://ip-api.com", "https://geocoding-api.open-meteo.com", "https://api.open-meteo.com"}));

    ReplayServer server;
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    ask('i');
    ask('s', QString::fromUtf8(" Forlì 東京 l'Aquila (AQ)&co+1=50% -._~!$,;:@/?\"#<>[\\]^`{|}\n"));
    ask('f', {}, 45, -0.5);
    ask('f', {}, 1e-7, 0.1 + 0.2);
    const QByteArray daily =
        "&current=temperature_2m,weathercode,windspeed_10m,relativehumidity_2m,apparent_temperature"
        "&daily=weathercode,temperature_2m_max,temperature_2m_min&timezone=auto&forecast_days=5";
    EXPECT_EQ(
        server.requestLines(),
        (QList<QByteArray>{"GET /json/?fields=lat,lon,city,country HTTP/1.1",
                           "GET /v1/search?name=%20Forl%C3%AC%20%E6%9D%B1%E4%BA%AC%20l'Aquila%20(AQ)&co+1=50%25%20"
                           "-._~!$,;:@/?%22%23%3C%3E%5B%5C%5D%5E%60%7B%7C%7D%0A&count=1&language=it&format=json "
                           "HTTP/1.1",
                           "GET /v1/forecast?latitude=45.0&longitude=-0.5" + daily + " HTTP/1.1",
                           "GET /v1/forecast?latitude=0.0000001&longitude=0.30000000000000004" + daily + " HTTP/1.1"}));

    // The status is never looked at; past a mebibyte a reply is refused however well it would read,
    // with a length announced or not.
    const std::tuple<const char*, ReplayServer::Reply, char, const char*> replies[] = {
        {"/json/", {500, samples::ipMilan}, 'i', "ok"},
        {"/v1/search", {200, samples::geoMilano}, 's', "Milano, Italia 45.4643 9.18951"},
        {"/v1/search", {200, samples::geoNone}, 's', "none"},
        {"/v1/search", {200, samples::geoEmpty}, 's', "none"},
        {"/v1/forecast", {500, samples::openMeteoError}, 'f', "decoding"},
        {"/v1/forecast", {200, QByteArray(1'000'000, ' ') + samples::forecastMilan}, 'f', "ok"},
        {"/v1/forecast", {200, QByteArray(1 << 20, ' ') + samples::forecastMilan}, 'f', "transport"},
        {"/v1/forecast",
         {200, QByteArray(1536 << 10, ' ') + samples::forecastMilan, {}, false, true},
         'f',
         "transport"},
    };
    for (const auto& [path, reply, call, answer] : replies) {
        server.setReply(path, reply);
        EXPECT_EQ(ask(call, "Milano"), answer);
    }
    const int normalTimeout = WeatherMonitor::shared().transferTimeout();
    WeatherMonitor::shared().setTransferTimeout(500);
    server.setHang("/v1/forecast");
    EXPECT_EQ(ask('f'), "transport");
    WeatherMonitor::shared().setTransferTimeout(normalTimeout);

    // Bases that are no URL or would swallow the path, a name with no UTF-8 form: no request.
    for (const char* base : {"not a url", "127.0.0.1:8", "http://", "http://h?x=1", "http://h#frag", "http://h h"}) {
        SettingsManager::shared().saveSetting(base, WeatherMonitor::configKey(WeatherMonitor::Service::IpApi));
        EXPECT_EQ(ask('i'), "bad url") << base;
    }
    pointWeatherServicesAt(server.baseUrl());
    server.clearRequests();
    EXPECT_EQ(ask('s', QString(QChar(0xDC00))), "bad url");
    EXPECT_TRUE(server.requestLines().isEmpty());
    pointWeatherServicesAt("");
}

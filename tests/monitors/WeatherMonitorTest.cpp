#include "OutsideData.h"
#include "ReplayServer.h"
#include "WeatherFixtures.h"

#include <QTcpServer>
#include <QTest>
#include <gtest/gtest.h>

namespace {

template <typename T> QString text(const WeatherResult<T>& r)
{
    if (const auto* e = std::get_if<WeatherError>(&r))
        return QStringList{"bad url", "transport", "decoding"}.at(int(e->kind));
    if constexpr (std::is_same_v<T, std::optional<WeatherSettings>>) {
        const auto& s = std::get<T>(r);
        return s ? s->city + " " + QString::number(*s->lat, 'g', 10) + " " + QString::number(*s->lon, 'g', 10) : "none";
    }
    return "ok";
}

// Runs a call ('i'p location, city 's'earch or 'f'orecast) to its one answer, which never comes
// from inside the call: the error kind, or what it brought.
QString ask(char call, const QString& name = {}, double lat = 0, double lon = 0)
{
    int calls = 0;
    QString answer;
    auto done = [&](const auto& r) {
        ++calls;
        answer = text(r);
    };
    auto& monitor = WeatherMonitor::shared();
    call == 'i'   ? monitor.fetchIPLocation(nullptr, done)
    : call == 's' ? monitor.searchCityCoordinates(name, nullptr, done)
                  : monitor.fetchWeather(lat, lon, nullptr, done);
    EXPECT_EQ(calls, 0);
    EXPECT_TRUE(QTest::qWaitFor([&] { return calls > 0; }, 20000));
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 1);
    return answer;
}

} // namespace

TEST(WeatherMonitor, PublicHostsAndUnusableBases)
{
    using S = WeatherMonitor::Service;
    pointWeatherServicesAt("");
    EXPECT_EQ(QStringList({WeatherMonitor::baseUrl(S::IpApi), WeatherMonitor::baseUrl(S::Geocoding),
                           WeatherMonitor::baseUrl(S::Forecast)}),
              QStringList({"http://ip-api.com", "https://geocoding-api.open-meteo.com", "https://api.open-meteo.com"}));
    EXPECT_TRUE(WeatherMonitor::buildUrl("http://127.0.0.1:8/proxy/", "/json/", "a=b"));
    for (const char* base : {"", "not a url", "127.0.0.1:8", "http://", "http://h?x=1", "http://h#frag", "http://h h"})
        EXPECT_FALSE(WeatherMonitor::buildUrl(base, "/json/", "a=b")) << base;
}

TEST(WeatherMonitor, RequestsRepliesAndFailures)
{
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    const QByteArray daily = "&current=temperature_2m,weathercode,windspeed_10m,"
                             "relativehumidity_2m,apparent_"
                             "temperature&daily=weathercode,temperature_2m_max,"
                             "temperature_2m_min&timezone=auto"
                             "&forecast_days=5 HTTP/1.1";
    const std::pair<std::function<void()>, QByteArray> lines[] = {
        {[] { ask('i'); }, "GET /json/?fields=lat,lon,city,country HTTP/1.1"},
        {[] {
             ask('s', QString::fromUtf8(" Forlì 東京 l'Aquila (AQ)&co+1=50% "
                                        "-._~!$,;:@/?\"#<>[\\]^`{|}\n"));
         },
         "GET "
         "/v1/"
         "search?name=%20Forl%C3%AC%20%E6%9D%B1%E4%BA%AC%20l'Aquila%20(AQ)&co+1="
         "50%25%20-._~!$,;:@/"
         "?%22%23%3C%3E%5B%5C%5D%5E%60%7B%7C%7D%0A&count=1&language=it&format="
         "json HTTP/1.1"},
        {[] { ask('f', {}, 45, -0.5); }, "GET /v1/forecast?latitude=45.0&longitude=-0.5" + daily},
        {[] { ask('f', {}, 1e-7, 0.1 + 0.2); },
         "GET /v1/forecast?latitude=0.0000001&longitude=0.30000000000000004" + daily},
    };
    for (const auto& [call, line] : lines) {
        server.clearRequests();
        call();
        EXPECT_EQ(server.requestLines(), QList<QByteArray>{line});
    }

    // The status is never looked at; a megabyte is refused however well it would read.
    const QByteArray huge = QByteArray(outside::maxReplyBytes, ' ') + samples::forecastMilan;
    const struct {
        const char* path;
        ReplayServer::Reply reply;
        char call;
        QString answer;
    } replies[] = {
        {"/json/", {500, samples::ipMilan}, 'i', "ok"},
        {"/v1/search", {200, samples::geoMilano}, 's', "Milano, Italia 45.46427 9.18951"},
        {"/v1/search", {200, samples::geoNone}, 's', "none"},
        {"/v1/search", {200, samples::geoEmpty}, 's', "none"},
        {"/v1/search", {200, samples::geoNoCountry}, 's', "decoding"},
        {"/v1/forecast", {404, samples::forecastNoDaily}, 'f', "ok"},
        {"/v1/forecast", {500, samples::openMeteoError}, 'f', "decoding"},
        {"/v1/forecast", {200, huge}, 'f', "transport"},
        {"/v1/forecast", {200, {}, {}, true}, 'f', "transport"}, // hangs
    };
    auto& monitor = WeatherMonitor::shared();
    const int normalTimeout = monitor.transferTimeout();
    monitor.setTransferTimeout(500);
    for (const auto& c : replies) {
        server.setReply(c.path, c.reply);
        EXPECT_EQ(ask(c.call, "Milano").toStdString(), c.answer.toStdString());
    }
    monitor.setTransferTimeout(normalTimeout);

    // No server, an unusable base, a name with no UTF-8 form.
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    pointWeatherServicesAt(QString("http://127.0.0.1:%1").arg(closed.serverPort()));
    closed.close();
    EXPECT_EQ(ask('i') + ", " + ask('s', "Roma"), "transport, transport");
    pointWeatherServicesAt("http://");
    EXPECT_EQ(ask('i'), "bad url");
    pointWeatherServicesAt(server.baseUrl());
    server.clearRequests();
    EXPECT_EQ(ask('s', QString(QChar(0xDC00))), "bad url");
    EXPECT_TRUE(server.requestLines().isEmpty());
    pointWeatherServicesAt("");
}

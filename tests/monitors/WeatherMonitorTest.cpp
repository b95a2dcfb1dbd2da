#include "WeatherMonitor.h"
#include "ReplayServer.h"
#include "SettingsManager.h"
#include "WeatherFixtures.h"

#include <QElapsedTimer>
#include <QFile>
#include <QProcess>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <cmath>
#include <gtest/gtest.h>
#include <limits>

namespace {

using Service = WeatherMonitor::Service;

// Starts a call with a recording callback and waits for its one answer.
template <typename T, typename Start> WeatherResult<T> answerOf(Start start)
{
    int calls = 0;
    std::optional<WeatherResult<T>> answer;
    start([&](const WeatherResult<T>& r) {
        ++calls;
        answer = r;
    });
    EXPECT_EQ(calls, 0) << "answered from inside the call";
    if (!QTest::qWaitFor([&] { return answer.has_value(); }, 10000)) {
        ADD_FAILURE() << "no answer";
        return WeatherError{WeatherError::Kind::Transport, "test: no answer"};
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(calls, 1);
    return *answer;
}

WeatherResult<IPLocation> ipLocation()
{
    return answerOf<IPLocation>([](auto cb) { WeatherMonitor::shared().fetchIPLocation(nullptr, cb); });
}

WeatherResult<std::optional<WeatherSettings>> search(const QString& name)
{
    return answerOf<std::optional<WeatherSettings>>(
        [&](auto cb) { WeatherMonitor::shared().searchCityCoordinates(name, nullptr, cb); });
}

WeatherResult<WeatherResponse> forecast(double lat, double lon)
{
    return answerOf<WeatherResponse>([&](auto cb) { WeatherMonitor::shared().fetchWeather(lat, lon, nullptr, cb); });
}

template <typename T> std::optional<WeatherError::Kind> errorKind(const WeatherResult<T>& r)
{
    if (const auto* e = std::get_if<WeatherError>(&r))
        return e->kind;
    return std::nullopt;
}

const QByteArray forecastTail =
    "&current=temperature_2m,weathercode,windspeed_10m,relativehumidity_2m,apparent_temperature"
    "&daily=weathercode,temperature_2m_max,temperature_2m_min&timezone=auto&forecast_days=5 HTTP/1.1";

// `head`, then `size` bytes of `fill`, then `tail`, written a megabyte at a time so the test's own
// memory stays small.
bool writeLarge(const QString& path, const QByteArray& head, qint64 size, char fill, const QByteArray& tail)
{
    QFile f(path);
    if (!f.open(QIODevice::WriteOnly) || f.write(head) != head.size())
        return false;
    const QByteArray block(1 << 20, fill);
    for (qint64 left = size; left > 0; left -= block.size())
        if (f.write(block.left(std::min<qint64>(left, block.size()))) < 0)
            return false;
    return f.write(tail) == tail.size();
}

qint64 peakResidentKiB()
{
    QFile status("/proc/self/status");
    if (!status.open(QIODevice::ReadOnly))
        return -1;
    for (const QByteArray& line : status.readAll().split('\n'))
        if (line.startsWith("VmHWM:"))
            return line.mid(6).trimmed().split(' ').first().toLongLong();
    return -1;
}

class WeatherMonitorTest : public ::testing::Test {
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.listen());
        pointWeatherServicesAt(server.baseUrl());
        server.setJson("/json/", samples::ipMilan);
        server.setJson("/v1/search", samples::geoMilano);
        server.setJson("/v1/forecast", samples::forecastMilan);
    }
    void TearDown() override { pointWeatherServicesAt(""); }

    ReplayServer server;
};

} // namespace

TEST(WeatherMonitorQuery, NamesArePercentEncodedForAQuery)
{
    const std::pair<QString, QByteArray> cases[] = {
        {"Milano", "Milano"},
        {"Reggio Emilia", "Reggio%20Emilia"},
        {QString::fromUtf8("Forlì"), "Forl%C3%AC"},
        {QString::fromUtf8("São Tomé"), "S%C3%A3o%20Tom%C3%A9"},
        {QString::fromUtf8("東京"), "%E6%9D%B1%E4%BA%AC"},
        {"  Roma\n", "%20%20Roma%0A"}, // not trimmed here
        {"A&B+C=D", "A&B+C=D"},        // query syntax passes as it is
        {"-._~!$&'()*+,;=:@/?", "-._~!$&'()*+,;=:@/?"},
        {"\"#%<>[\\]^`{|}", "%22%23%25%3C%3E%5B%5C%5D%5E%60%7B%7C%7D"},
        {"", ""},
    };
    for (const auto& [name, encoded] : cases)
        EXPECT_EQ(WeatherMonitor::encodeQueryValue(name), encoded) << name.toStdString();
    EXPECT_FALSE(WeatherMonitor::encodeQueryValue(QString(QChar(0xD800)) + "x")); // lone surrogate
}

TEST(WeatherMonitorQuery, CoordinatesAreShortestDecimalsWithAFraction)
{
    const std::pair<double, QByteArray> cases[] = {
        {45, "45.0"},        {9.19, "9.19"},       {-0.5, "-0.5"},         {0, "0.0"},
        {-0.0, "-0.0"},      {45.4643, "45.4643"}, {-180, "-180.0"},       {0.1 + 0.2, "0.30000000000000004"},
        {1e-7, "0.0000001"}, {123.456, "123.456"}, {44.69825, "44.69825"},
    };
    for (const auto& [value, text] : cases)
        EXPECT_EQ(WeatherMonitor::coordinateText(value), text) << value;
}

TEST(WeatherMonitorQuery, BaseUrlsComeFromTheSettingsOrThePublicHosts)
{
    const std::pair<Service, QString> defaults[] = {
        {Service::IpApi, "http://ip-api.com"},
        {Service::Geocoding, "https://geocoding-api.open-meteo.com"},
        {Service::Forecast, "https://api.open-meteo.com"},
    };
    for (const auto& [service, base] : defaults) {
        pointWeatherServicesAt("");
        EXPECT_EQ(WeatherMonitor::baseUrl(service), base);
        SettingsManager::shared().saveSetting("http://127.0.0.1:9", WeatherMonitor::configKey(service));
        EXPECT_EQ(WeatherMonitor::baseUrl(service), "http://127.0.0.1:9");
    }
    pointWeatherServicesAt("");
}

TEST(WeatherMonitorQuery, UnusableBasesGiveNoUrl)
{
    EXPECT_TRUE(WeatherMonitor::buildUrl("http://127.0.0.1:8/", "/json/", "a=b"));
    EXPECT_TRUE(WeatherMonitor::buildUrl("http://127.0.0.1:8/proxy", "/json/", "a=b"));
    for (const char* base : {"", "not a url", "127.0.0.1:8", "http://", "http://h?x=1", "http://h#frag", "http://h h"})
        EXPECT_FALSE(WeatherMonitor::buildUrl(base, "/json/", "a=b")) << base;
}

TEST_F(WeatherMonitorTest, RequestLinesAreExact)
{
    struct Case {
        const char* what;
        std::function<void()> call;
        QByteArray line;
    };
    const Case cases[] = {
        {"ip", [] { ipLocation(); }, "GET /json/?fields=lat,lon,city,country HTTP/1.1"},
        {"blank", [] { search("Reggio Emilia"); },
         "GET /v1/search?name=Reggio%20Emilia&count=1&language=it&format=json HTTP/1.1"},
        {"accent", [] { search(QString::fromUtf8("Forlì")); },
         "GET /v1/search?name=Forl%C3%AC&count=1&language=it&format=json HTTP/1.1"},
        {"syntax", [] { search("l'Aquila (AQ) & co+1 50%"); },
         "GET /v1/search?name=l'Aquila%20(AQ)%20&%20co+1%2050%25&count=1&language=it&format=json HTTP/1.1"},
        {"whole", [] { forecast(45, 9); }, "GET /v1/forecast?latitude=45.0&longitude=9.0" + forecastTail},
        {"fraction", [] { forecast(45.4643, -0.5); },
         "GET /v1/forecast?latitude=45.4643&longitude=-0.5" + forecastTail},
    };
    for (const auto& c : cases) {
        server.clearRequests();
        c.call();
        ASSERT_EQ(server.requestLines().size(), 1) << c.what;
        EXPECT_EQ(server.requestLines().first(), c.line) << c.what;
    }
}

TEST_F(WeatherMonitorTest, RepliesDecodeIntoRecords)
{
    const auto ip = ipLocation();
    ASSERT_TRUE(std::holds_alternative<IPLocation>(ip));
    EXPECT_EQ(std::get<IPLocation>(ip), (IPLocation{45.4643, 9.1895, "Milan", "Italy"}));

    const auto city = search("Milano");
    ASSERT_TRUE(std::holds_alternative<std::optional<WeatherSettings>>(city));
    EXPECT_EQ(std::get<std::optional<WeatherSettings>>(city),
              (WeatherSettings{true, "Milano, Italia", 45.46427, 9.18951}));

    const auto weather = forecast(45.46, 9.18);
    ASSERT_TRUE(std::holds_alternative<WeatherResponse>(weather));
    EXPECT_EQ(std::get<WeatherResponse>(weather),
              std::get<WeatherResponse>(WeatherResponse::decode(samples::forecastMilan)));
}

TEST_F(WeatherMonitorTest, SearchWithoutMatchesIsNoError)
{
    for (const QByteArray& body : {samples::geoNone, samples::geoEmpty}) {
        server.setJson("/v1/search", body);
        const auto r = search("Atlantide");
        ASSERT_TRUE(std::holds_alternative<std::optional<WeatherSettings>>(r)) << body.toStdString();
        EXPECT_FALSE(std::get<std::optional<WeatherSettings>>(r));
    }
    server.setJson("/v1/search", samples::geoNoCountry);
    EXPECT_EQ(errorKind(search("Atlantis")), WeatherError::Kind::Decoding);
}

TEST_F(WeatherMonitorTest, TheStatusIsNeverLookedAt)
{
    // A failing status with the fields is a success; a success status without them is an error.
    server.setJson("/json/", samples::ipMilan, 500);
    EXPECT_TRUE(std::holds_alternative<IPLocation>(ipLocation()));
    server.setJson("/v1/forecast", samples::forecastNoDaily, 404);
    EXPECT_TRUE(std::holds_alternative<WeatherResponse>(forecast(46.5, 11.35)));

    server.setJson("/json/", samples::ipFail, 200);
    EXPECT_EQ(errorKind(ipLocation()), WeatherError::Kind::Decoding);
    for (int status : {400, 500}) {
        server.setJson("/v1/forecast", samples::openMeteoError, status);
        EXPECT_EQ(errorKind(forecast(91, 0)), WeatherError::Kind::Decoding) << status;
    }
    server.setReply("/json/", {429, "Too many requests", "text/plain"});
    EXPECT_EQ(errorKind(ipLocation()), WeatherError::Kind::Decoding);
    server.setReply("/v1/forecast", {200, "<html><body>Gateway</body></html>", "text/html"});
    EXPECT_EQ(errorKind(forecast(1, 2)), WeatherError::Kind::Decoding);
}

TEST_F(WeatherMonitorTest, TransportFailuresArriveAsErrors)
{
    // A port nobody listens on.
    QTcpServer closed;
    ASSERT_TRUE(closed.listen(QHostAddress::LocalHost));
    const auto deadPort = closed.serverPort();
    closed.close();
    pointWeatherServicesAt(QString("http://127.0.0.1:%1").arg(deadPort));
    EXPECT_EQ(errorKind(ipLocation()), WeatherError::Kind::Transport);
    EXPECT_EQ(errorKind(search("Roma")), WeatherError::Kind::Transport);

    // A server that accepts and never answers.
    pointWeatherServicesAt(server.baseUrl());
    server.setHang("/v1/forecast");
    auto& monitor = WeatherMonitor::shared();
    const int normal = monitor.transferTimeout();
    monitor.setTransferTimeout(300);
    EXPECT_EQ(errorKind(forecast(45, 9)), WeatherError::Kind::Transport);
    monitor.setTransferTimeout(normal);
    EXPECT_EQ(server.requestLines().size(), 1);
}

TEST_F(WeatherMonitorTest, BadUrlsFailWithoutARequest)
{
    pointWeatherServicesAt("http://");
    EXPECT_EQ(errorKind(ipLocation()), WeatherError::Kind::BadUrl);
    pointWeatherServicesAt(server.baseUrl());
    EXPECT_EQ(errorKind(search(QString(QChar(0xDC00)))), WeatherError::Kind::BadUrl);
    EXPECT_TRUE(server.requestLines().isEmpty());
}

TEST_F(WeatherMonitorTest, OverridesAreReadAtEachRequest)
{
    ReplayServer other;
    ASSERT_TRUE(other.listen());
    other.setJson("/json/", R"({"lat":41.9,"lon":12.5,"city":"Rome","country":"Italy"})");
    ASSERT_TRUE(std::holds_alternative<IPLocation>(ipLocation()));
    SettingsManager::shared().saveSetting(other.baseUrl(), WeatherMonitor::configKey(Service::IpApi));
    const auto r = ipLocation();
    ASSERT_TRUE(std::holds_alternative<IPLocation>(r));
    EXPECT_EQ(std::get<IPLocation>(r).city, "Rome");
    EXPECT_EQ(server.requestLines().size(), 1);
    EXPECT_EQ(other.requestLines().size(), 1);
}

TEST_F(WeatherMonitorTest, AGoneContextDropsTheAnswer)
{
    auto* context = new QObject;
    bool called = false;
    WeatherMonitor::shared().fetchIPLocation(context, [&](const WeatherResult<IPLocation>&) { called = true; });
    QSignalSpy requested(&server, &ReplayServer::requestReceived);
    ASSERT_TRUE(requested.wait(5000));
    delete context;
    // A later call on the same server answers after the first one has been handled.
    ASSERT_TRUE(std::holds_alternative<IPLocation>(ipLocation()));
    EXPECT_FALSE(called);
}

TEST_F(WeatherMonitorTest, CallsOverlapAndEachAnswersOnce)
{
    int answers = 0;
    for (int i = 0; i < 5; ++i)
        WeatherMonitor::shared().fetchWeather(i, i, nullptr, [&](const WeatherResult<WeatherResponse>& r) {
            answers += std::holds_alternative<WeatherResponse>(r) ? 1 : 100;
        });
    EXPECT_TRUE(QTest::qWaitFor([&] { return answers >= 5; }, 10000));
    QCoreApplication::processEvents();
    EXPECT_EQ(answers, 5);
    EXPECT_EQ(server.requestLines().size(), 5);
}

TEST(WeatherMonitorLimits, HugeRepliesAreRefusedWhileReadingAndTheLoopKeepsTicking)
{
    // Served from a process of its own, so only what this process reads counts.
    QTemporaryDir dir;
    const qint64 tenMiB = 10 << 20;
    ASSERT_TRUE(writeLarge(dir.filePath("ip.json"), R"({"lat":45.46,"lon":9.19,"country":"Italia","city":")", tenMiB,
                           'M', R"("})"));
    ASSERT_TRUE(writeLarge(dir.filePath("geo.json"),
                           R"({"results":[{"latitude":45.46,"longitude":9.19,"country":"Italia","name":")", tenMiB, 'M',
                           R"("}]})"));
    ASSERT_TRUE(writeLarge(dir.filePath("huge.json"), "", 100 << 20, ' ', "{}"));
    QFile routes(dir.filePath("replies.json"));
    ASSERT_TRUE(routes.open(QIODevice::WriteOnly));
    routes.write(R"({"/json/":{"file":"ip.json"},"/v1/search":{"file":"geo.json"},
                    "/v1/forecast":{"file":"huge.json"},
                    "/unannounced/v1/forecast":{"file":"huge.json","announceLength":false}})");
    routes.close();
    QProcess server;
    server.start(qEnvironmentVariable("OMBRIX_BUILD_DIR") + "/tests/support/ombrix-replay-server",
                 {dir.path(), dir.filePath("port"), dir.filePath("requests.log")});
    ASSERT_TRUE(QTest::qWaitFor([&] { return QFile::exists(dir.filePath("port")); }, 10000));
    QFile portFile(dir.filePath("port"));
    ASSERT_TRUE(portFile.open(QIODevice::ReadOnly));
    const QString base = "http://127.0.0.1:" + QString::fromLatin1(portFile.readAll().trimmed());

    qint64 longestGapMs = 0;
    QElapsedTimer sinceTick;
    QTimer tick;
    tick.setTimerType(Qt::PreciseTimer);
    QObject::connect(&tick, &QTimer::timeout, [&] { longestGapMs = std::max(longestGapMs, sinceTick.restart()); });
    sinceTick.start();
    tick.start(10);

    pointWeatherServicesAt(base);
    EXPECT_EQ(errorKind(ipLocation()), WeatherError::Kind::Transport);
    EXPECT_EQ(errorKind(search("Milano")), WeatherError::Kind::Transport);
    EXPECT_EQ(errorKind(forecast(45, 9)), WeatherError::Kind::Transport);
    pointWeatherServicesAt(base + "/unannounced"); // cut off while reading, not by its header
    EXPECT_EQ(errorKind(forecast(45, 9)), WeatherError::Kind::Transport);
    pointWeatherServicesAt("");
    tick.stop();

    EXPECT_LT(longestGapMs, 100);
    EXPECT_LT(peakResidentKiB(), 120 * 1024);
    server.kill();
    server.waitForFinished(3000);
}

#include "WeatherMonitor.h"

#include "MonitorsLog.h"
#include "OutsideData.h"
#include "SettingsManager.h"

#include <QNetworkReply>
#include <QNetworkRequest>
#include <QPointer>
#include <charconv>
#include <cmath>

Q_LOGGING_CATEGORY(lcMonitors, "ombrix.monitors", QtWarningMsg)

namespace {

struct Endpoint {
    const char* configKey;
    const char* defaultBase;
};

// The public hosts, each replaceable by a base URL in the settings (tests point them at 127.0.0.1).
Endpoint endpoint(WeatherMonitor::Service service)
{
    switch (service) {
    case WeatherMonitor::Service::IpApi:
        return {"service.ipapi.base", "http://ip-api.com"};
    case WeatherMonitor::Service::Geocoding:
        return {"service.geocoding.base", "https://geocoding-api.open-meteo.com"};
    case WeatherMonitor::Service::Forecast:
        break;
    }
    return {"service.forecast.base", "https://api.open-meteo.com"};
}

// The reply errors Qt derives from an HTTP status; the body came whole with them.
bool isStatusError(QNetworkReply::NetworkError e)
{
    return (e >= QNetworkReply::ContentAccessDenied && e <= QNetworkReply::UnknownContentError) ||
           (e >= QNetworkReply::InternalServerError && e <= QNetworkReply::UnknownServerError) ||
           e == QNetworkReply::ProtocolInvalidOperationError;
}

bool arrivedWhole(QNetworkReply* reply)
{
    const auto e = reply->error();
    if (e == QNetworkReply::NoError)
        return true;
    return isStatusError(e) && reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).isValid();
}

// Runs `decode` on a body, or passes the error on unchanged.
template <typename T, typename Decode> WeatherResult<T> decodeBody(const WeatherResult<QByteArray>& body, Decode decode)
{
    if (const auto* err = std::get_if<WeatherError>(&body))
        return *err;
    WeatherResult<T> result = decode(std::get<QByteArray>(body));
    if (const auto* err = std::get_if<WeatherError>(&result))
        qCWarning(lcMonitors) << "bad weather reply:" << err->detail;
    return result;
}

} // namespace

WeatherMonitor& WeatherMonitor::shared()
{
    // Never destroyed: its network objects must not outlive the application object at exit.
    static auto* instance = new WeatherMonitor;
    return *instance;
}

const char* WeatherMonitor::configKey(Service service)
{
    return endpoint(service).configKey;
}
const char* WeatherMonitor::defaultBaseUrl(Service service)
{
    return endpoint(service).defaultBase;
}

QString WeatherMonitor::baseUrl(Service service)
{
    const auto e = endpoint(service);
    const auto configured = SettingsManager::shared().configString(e.configKey);
    if (configured && !configured->isEmpty())
        return *configured;
    return e.defaultBase;
}

std::optional<QByteArray> WeatherMonitor::encodeQueryValue(const QString& text)
{
    // A lone surrogate has no UTF-8 form.
    if (!text.isValidUtf16())
        return std::nullopt;
    // Letters, digits and "-._~" are never encoded; the rest of the query-safe set stays too.
    return text.toUtf8().toPercentEncoding("!$&'()*+,;=:@/?");
}

QByteArray WeatherMonitor::coordinateText(double value)
{
    // The shortest decimal that reads back as the same double, never with an exponent (coordinates
    // are small, and a tiny one is clearer as 0.00005 than as 5e-05).
    char buf[400];
    const auto [end, ec] = std::to_chars(buf, buf + sizeof buf, value, std::chars_format::fixed);
    QByteArray text(buf, ec == std::errc() ? end - buf : 0);
    // Whole values still carry a fraction: 45 is sent as "45.0".
    if (std::isfinite(value) && !text.contains('.'))
        text += ".0";
    return text;
}

QByteArray WeatherMonitor::forecastQuery(double latitude, double longitude)
{
    return "latitude=" + coordinateText(latitude) + "&longitude=" + coordinateText(longitude) +
           "&current=temperature_2m,weathercode,windspeed_10m,relativehumidity_2m,apparent_temperature"
           "&daily=weathercode,temperature_2m_max,temperature_2m_min&timezone=auto&forecast_days=5";
}

std::optional<QUrl> WeatherMonitor::buildUrl(const QString& base, const QByteArray& path, const QByteArray& query)
{
    QByteArray text = base.toUtf8();
    while (text.endsWith('/'))
        text.chop(1);
    // Strict parsing of already encoded bytes: QUrl then sends the query exactly as written.
    const QUrl url = QUrl::fromEncoded(text + path + '?' + query, QUrl::StrictMode);
    // A base with its own query or fragment would swallow the path.
    if (!url.isValid() || url.scheme().isEmpty() || url.host().isEmpty() ||
        !url.path().endsWith(QString::fromUtf8(path)))
        return std::nullopt;
    return url;
}

void WeatherMonitor::get(Service service, const QByteArray& path, const std::optional<QByteArray>& query,
                         QObject* context, std::function<void(WeatherResult<QByteArray>)> done)
{
    const QPointer<QObject> guard(context);
    auto deliver = [guard, guarded = context != nullptr, done = std::move(done)](const WeatherResult<QByteArray>& r) {
        if (guarded && !guard)
            return;
        done(r);
    };

    const auto url = query ? buildUrl(baseUrl(service), path, *query) : std::nullopt;
    if (!url) {
        // Still answered later, never from inside the call.
        QMetaObject::invokeMethod(
            &m_network,
            [deliver] {
                deliver(WeatherError{WeatherError::Kind::BadUrl, "bad URL"});
            },
            Qt::QueuedConnection);
        return;
    }
    QNetworkRequest request(*url);
    request.setTransferTimeout(m_transferTimeout);
    QNetworkReply* reply = m_network.get(request);
    outside::limitBody(reply, outside::maxReplyBytes);
    // A caller that goes away (a widget switched off) takes its request with it.
    if (context)
        QObject::connect(context, &QObject::destroyed, reply, &QNetworkReply::abort);
    QObject::connect(reply, &QNetworkReply::finished, reply, [reply, deliver] {
        reply->deleteLater();
        const auto body = arrivedWhole(reply) ? outside::readBody(reply, outside::maxReplyBytes) : std::nullopt;
        if (body)
            deliver(*body);
        else {
            qCWarning(lcMonitors) << "weather request failed:" << reply->url().path() << reply->errorString();
            deliver(WeatherError{WeatherError::Kind::Transport, reply->errorString()});
        }
    });
}

void WeatherMonitor::fetchIPLocation(QObject* context, Callback<IPLocation> done)
{
    get(Service::IpApi, "/json/", QByteArray("fields=lat,lon,city,country"), context,
        [done = std::move(done)](WeatherResult<QByteArray> body) {
            done(decodeBody<IPLocation>(body, IPLocation::decode));
        });
}

void WeatherMonitor::searchCityCoordinates(const QString& name, QObject* context,
                                           Callback<std::optional<WeatherSettings>> done)
{
    const auto encoded = encodeQueryValue(name);
    const auto query = encoded ? std::optional("name=" + *encoded + "&count=1&language=it&format=json") : std::nullopt;
    get(Service::Geocoding, "/v1/search", query, context, [done = std::move(done)](WeatherResult<QByteArray> body) {
        done(decodeBody<std::optional<WeatherSettings>>(body, [](const QByteArray& bytes) {
            const auto reply = GeocodingResponse::decode(bytes);
            if (const auto* err = std::get_if<WeatherError>(&reply))
                return WeatherResult<std::optional<WeatherSettings>>(*err);
            const auto& results = std::get<GeocodingResponse>(reply).results;
            if (!results || results->isEmpty())
                return WeatherResult<std::optional<WeatherSettings>>(std::nullopt);
            const auto& first = results->first();
            return WeatherResult<std::optional<WeatherSettings>>(
                WeatherSettings{true, first.name + ", " + first.country, first.latitude, first.longitude});
        }));
    });
}

void WeatherMonitor::fetchWeather(double latitude, double longitude, QObject* context, Callback<WeatherResponse> done)
{
    get(Service::Forecast, "/v1/forecast", forecastQuery(latitude, longitude), context,
        [done = std::move(done)](WeatherResult<QByteArray> body) {
            done(decodeBody<WeatherResponse>(body, WeatherResponse::decode));
        });
}

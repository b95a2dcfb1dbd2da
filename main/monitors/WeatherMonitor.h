#pragma once
// The only HTTP client of the app: where the machine is (by its public IP), the coordinates of a
// named city, and the weather at a coordinate pair. Every call returns at once and answers exactly
// once, later, on the GUI thread, with its result or an error. Nothing is cached or retried, and the
// HTTP status is never looked at: whatever body arrives goes to the decoder.
#include "SettingsRecords.h"
#include "WeatherReplies.h"

#include <QNetworkAccessManager>
#include <QUrl>
#include <functional>
#include <optional>

class WeatherMonitor {
  public:
    template <typename T> using Callback = std::function<void(WeatherResult<T>)>;

    enum class Service { IpApi, Geocoding, Forecast };

    // Made on first use; first use must be on the GUI thread.
    static WeatherMonitor& shared();

    // `context`, when given, guards the callback: once it is destroyed the answer is dropped.
    void fetchIPLocation(QObject* context, Callback<IPLocation> done);
    // No value (and no error) when the service found no match; else a manual location named
    // "<name>, <country>".
    void searchCityCoordinates(const QString& name, QObject* context, Callback<std::optional<WeatherSettings>> done);
    void fetchWeather(double latitude, double longitude, QObject* context, Callback<WeatherResponse> done);

    // The override stored in the settings under `configKey`, read at each request, or the public host.
    static QString baseUrl(Service service);
    static const char* configKey(Service service);
    static const char* defaultBaseUrl(Service service);

    // The query forms the services are sent.
    static std::optional<QByteArray> encodeQueryValue(const QString& text); // none for broken UTF-16
    static QByteArray coordinateText(double value);
    static QByteArray forecastQuery(double latitude, double longitude);
    // Base + path + "?" + query with the query bytes kept exactly; none when it is no usable URL.
    static std::optional<QUrl> buildUrl(const QString& base, const QByteArray& path, const QByteArray& query);

    // Tests shorten the wait for a server that never answers; 0 waits for ever.
    void setTransferTimeout(int milliseconds) { m_transferTimeout = milliseconds; }
    int transferTimeout() const { return m_transferTimeout; }

    WeatherMonitor(const WeatherMonitor&) = delete;
    WeatherMonitor& operator=(const WeatherMonitor&) = delete;

  private:
    WeatherMonitor() = default;
    // One GET; the body of any reply that arrives, or the transport error.
    void get(Service service, const QByteArray& path, const std::optional<QByteArray>& query, QObject* context,
             std::function<void(WeatherResult<QByteArray>)> done);

    QNetworkAccessManager m_network;
    // A minute without a byte, the usual default of HTTP stacks; with no limit a server that accepts
    // and never answers would hold a load for ever.
    int m_transferTimeout = 60000;
};

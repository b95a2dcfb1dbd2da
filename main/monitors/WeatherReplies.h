#pragma once
// The decoded replies of the location, geocoding and forecast services. Decoding is strict: a
// required field that is missing, null or of another type fails the whole record; optional fields
// may be missing or null; fields not listed here are ignored.
#include <QByteArray>
#include <QList>
#include <QString>
#include <optional>
#include <variant>

// Why a request gave no result. Callers show every kind the same way; the kind and detail are kept
// for tests and debugging.
struct WeatherError {
    enum class Kind { BadUrl, Transport, Decoding };
    Kind kind = Kind::Transport;
    QString detail;
};

template <typename T> using WeatherResult = std::variant<T, WeatherError>;

struct IPLocation {
    double lat = 0;
    double lon = 0;
    QString city;
    QString country;

    static WeatherResult<IPLocation> decode(const QByteArray& body);
    bool operator==(const IPLocation&) const = default;
};

struct GeocodingResponse {
    struct Result {
        QString name;
        double latitude = 0;
        double longitude = 0;
        QString country;
        bool operator==(const Result&) const = default;
    };
    std::optional<QList<Result>> results; // missing when nothing was found

    static WeatherResult<GeocodingResponse> decode(const QByteArray& body);
    bool operator==(const GeocodingResponse&) const = default;
};

struct WeatherResponse {
    struct CurrentWeather {
        double temperature_2m = 0;
        qint64 weathercode = 0;
        std::optional<double> relativehumidity_2m;
        std::optional<double> apparent_temperature;
        std::optional<double> windspeed_10m;
        bool operator==(const CurrentWeather&) const = default;
    };
    // Parallel arrays, index 0 today; their lengths are not compared.
    struct DailyForecast {
        QList<QString> time;
        QList<qint64> weathercode;
        QList<double> temperature_2m_max;
        QList<double> temperature_2m_min;
        bool operator==(const DailyForecast&) const = default;
    };
    CurrentWeather current;
    std::optional<DailyForecast> daily;

    static WeatherResult<WeatherResponse> decode(const QByteArray& body);
    bool operator==(const WeatherResponse&) const = default;
};

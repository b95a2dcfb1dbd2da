#pragma once
// Plain value records kept in the defaults suite, with their JSON rules.
#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <optional>

struct Position {
    double x = 0;
    double y = 0;

    QByteArray toJson() const;
    // Both keys required; anything else gives nothing.
    static std::optional<Position> fromJson(const QByteArray& data);
    bool operator==(const Position&) const = default;
};

struct WeatherSettings {
    bool useManual = false;
    QString city;
    std::optional<double> lat;
    std::optional<double> lon;

    QByteArray toJson() const;
    // "useManual" and "city" are required; "lat"/"lon" may be missing or null.
    static std::optional<WeatherSettings> fromJson(const QByteArray& data);
    bool operator==(const WeatherSettings&) const = default;
};

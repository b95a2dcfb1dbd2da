#include "SettingsRecords.h"

#include "JsonRead.h"

#include <QJsonDocument>

QByteArray Position::toJson() const
{
    return QJsonDocument(QJsonObject{{"x", x}, {"y", y}}).toJson(QJsonDocument::Compact);
}

std::optional<Position> Position::fromJson(const QByteArray& data)
{
    const auto obj = json::parseObject(data);
    if (!obj)
        return std::nullopt;
    const auto x = json::requiredDouble(*obj, "x");
    const auto y = json::requiredDouble(*obj, "y");
    if (!x || !y)
        return std::nullopt;
    return Position{*x, *y};
}

QByteArray WeatherSettings::toJson() const
{
    QJsonObject o{{"useManual", useManual}, {"city", city}};
    if (lat)
        o.insert("lat", *lat);
    if (lon)
        o.insert("lon", *lon);
    return QJsonDocument(o).toJson(QJsonDocument::Compact);
}

std::optional<WeatherSettings> WeatherSettings::fromJson(const QByteArray& data)
{
    const auto obj = json::parseObject(data);
    if (!obj)
        return std::nullopt;
    const auto useManual = json::requiredBool(*obj, "useManual");
    const auto city = json::requiredString(*obj, "city");
    bool ok = true;
    const auto lat = json::optionalDouble(*obj, "lat", ok);
    const auto lon = json::optionalDouble(*obj, "lon", ok);
    if (!useManual || !city || !ok)
        return std::nullopt;
    return WeatherSettings{*useManual, *city, lat, lon};
}

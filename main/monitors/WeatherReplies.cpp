#include "WeatherReplies.h"

#include "JsonRead.h"
#include "OutsideData.h"

#include <QJsonArray>
#include <QJsonObject>
#include <initializer_list>
#include <utility>

namespace {

WeatherError decodingError(const QString& detail)
{
    return {WeatherError::Kind::Decoding, detail};
}

WeatherError notAnObject(const char* type)
{
    return decodingError(QString("%1: body is not a JSON object").arg(type));
}

// The error for the first field that did not read, or nothing when all did.
std::optional<WeatherError> firstInvalid(const char* type, std::initializer_list<std::pair<const char*, bool>> fields)
{
    for (const auto& [name, ok] : fields) {
        if (!ok)
            return decodingError(QString("%1: field '%2' missing or of the wrong type").arg(type, name));
    }
    return std::nullopt;
}

// Absent or null reads as nothing; anything but an object is an error.
std::optional<QJsonObject> nestedObject(const QJsonObject& o, const QString& key, bool& ok)
{
    const auto v = o.value(key);
    if (v.isUndefined() || v.isNull())
        return std::nullopt;
    if (!v.isObject())
        ok = false;
    return v.toObject();
}

WeatherResult<GeocodingResponse::Result> decodeResult(const QJsonValue& v)
{
    if (!v.isObject())
        return decodingError("GeocodingResponse.Result: not an object");
    const auto o = v.toObject();
    const auto name = json::requiredString(o, "name");
    const auto latitude = json::requiredDouble(o, "latitude");
    const auto longitude = json::requiredDouble(o, "longitude");
    const auto country = json::requiredString(o, "country");
    if (auto err = firstInvalid("GeocodingResponse.Result", {{"name", name.has_value()},
                                                             {"latitude", latitude.has_value()},
                                                             {"longitude", longitude.has_value()},
                                                             {"country", country.has_value()}}))
        return *err;
    return GeocodingResponse::Result{outside::cutText(*name), *latitude, *longitude, outside::cutText(*country)};
}

WeatherResult<WeatherResponse::CurrentWeather> decodeCurrent(const QJsonObject& o)
{
    bool ok = true;
    const auto temperature = json::requiredDouble(o, "temperature_2m");
    const auto code = json::requiredInt(o, "weathercode");
    WeatherResponse::CurrentWeather c;
    c.relativehumidity_2m = json::optionalDouble(o, "relativehumidity_2m", ok);
    c.apparent_temperature = json::optionalDouble(o, "apparent_temperature", ok);
    c.windspeed_10m = json::optionalDouble(o, "windspeed_10m", ok);
    if (auto err = firstInvalid(
            "WeatherResponse.CurrentWeather",
            {{"temperature_2m", temperature.has_value()}, {"weathercode", code.has_value()}, {"optional fields", ok}}))
        return *err;
    c.temperature_2m = *temperature;
    c.weathercode = *code;
    return c;
}

WeatherResult<WeatherResponse::DailyForecast> decodeDaily(const QJsonObject& o)
{
    const auto time = json::stringArray(o.value("time"));
    const auto code = json::intArray(o.value("weathercode"));
    const auto max = json::doubleArray(o.value("temperature_2m_max"));
    const auto min = json::doubleArray(o.value("temperature_2m_min"));
    if (auto err = firstInvalid("WeatherResponse.DailyForecast", {{"time", time.has_value()},
                                                                  {"weathercode", code.has_value()},
                                                                  {"temperature_2m_max", max.has_value()},
                                                                  {"temperature_2m_min", min.has_value()}}))
        return *err;
    return WeatherResponse::DailyForecast{*time, *code, *max, *min};
}

} // namespace

WeatherResult<IPLocation> IPLocation::decode(const QByteArray& body)
{
    const auto o = json::parseObject(body);
    if (!o)
        return notAnObject("IPLocation");
    const auto lat = json::requiredDouble(*o, "lat");
    const auto lon = json::requiredDouble(*o, "lon");
    const auto city = json::requiredString(*o, "city");
    const auto country = json::requiredString(*o, "country");
    if (auto err = firstInvalid("IPLocation", {{"lat", lat.has_value()},
                                               {"lon", lon.has_value()},
                                               {"city", city.has_value()},
                                               {"country", country.has_value()}}))
        return *err;
    return IPLocation{*lat, *lon, outside::cutText(*city), outside::cutText(*country)};
}

WeatherResult<GeocodingResponse> GeocodingResponse::decode(const QByteArray& body)
{
    const auto o = json::parseObject(body);
    if (!o)
        return notAnObject("GeocodingResponse");
    const auto v = o->value("results");
    if (v.isUndefined() || v.isNull())
        return GeocodingResponse{};
    if (!v.isArray())
        return decodingError("GeocodingResponse: field 'results' is not an array");
    QList<Result> results;
    for (const auto& element : v.toArray()) {
        auto r = decodeResult(element);
        if (auto* err = std::get_if<WeatherError>(&r))
            return *err;
        results.append(std::get<Result>(r));
    }
    return GeocodingResponse{results};
}

WeatherResult<WeatherResponse> WeatherResponse::decode(const QByteArray& body)
{
    const auto o = json::parseObject(body);
    if (!o)
        return notAnObject("WeatherResponse");
    bool ok = true;
    const auto currentObject = nestedObject(*o, "current", ok);
    const auto dailyObject = nestedObject(*o, "daily", ok);
    if (auto err = firstInvalid("WeatherResponse", {{"current", currentObject.has_value() && ok}, {"daily", ok}}))
        return *err;
    WeatherResponse response;
    auto current = decodeCurrent(*currentObject);
    if (auto* err = std::get_if<WeatherError>(&current))
        return *err;
    response.current = std::get<CurrentWeather>(current);
    if (dailyObject) {
        auto daily = decodeDaily(*dailyObject);
        if (auto* err = std::get_if<WeatherError>(&daily))
            return *err;
        response.daily = std::get<DailyForecast>(daily);
    }
    return response;
}

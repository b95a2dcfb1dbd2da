#include "SharedWidgetData.h"

#include "JsonRead.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <cmath>

namespace {

template <typename T> void putOptional(QJsonObject& o, const char* key, const std::optional<T>& v)
{
    if (v)
        o.insert(key, *v);
}

bool finiteNumbers(const SharedWidgetData& d)
{
    if (!d.weather)
        return true;
    const auto bad = [](const std::optional<double>& v) { return v && !std::isfinite(*v); };
    return !bad(d.weather->temp) && !bad(d.weather->apparent);
}

} // namespace

QJsonObject BatteryDevice::toJsonObject() const
{
    return QJsonObject{{"id", id}, {"name", name}, {"percent", percent}, {"charging", charging}, {"type", type}};
}

std::optional<BatteryDevice> BatteryDevice::fromJsonObject(const QJsonObject& o)
{
    const auto id = json::requiredString(o, "id");
    const auto name = json::requiredString(o, "name");
    const auto percent = json::requiredInt(o, "percent");
    const auto charging = json::requiredBool(o, "charging");
    const auto type = json::requiredString(o, "type");
    if (!id || !name || !percent || !charging || !type)
        return std::nullopt;
    return BatteryDevice{*id, *name, *percent, *charging, *type};
}

QJsonObject WeatherData::toJsonObject() const
{
    QJsonObject o;
    putOptional(o, "city", city);
    putOptional(o, "temp", temp);
    putOptional(o, "code", code);
    putOptional(o, "apparent", apparent);
    return o;
}

std::optional<WeatherData> WeatherData::fromJsonObject(const QJsonObject& o)
{
    bool ok = true;
    WeatherData d{json::optionalString(o, "city", ok), json::optionalDouble(o, "temp", ok),
                  json::optionalInt(o, "code", ok), json::optionalDouble(o, "apparent", ok)};
    return ok ? std::optional(d) : std::nullopt;
}

QJsonObject MusicData::toJsonObject() const
{
    QJsonObject o;
    putOptional(o, "track", track);
    putOptional(o, "artist", artist);
    putOptional(o, "artwork", artwork);
    putOptional(o, "source", source);
    o.insert("playing", playing);
    return o;
}

std::optional<MusicData> MusicData::fromJsonObject(const QJsonObject& o)
{
    bool ok = true;
    MusicData d{json::optionalString(o, "track", ok), json::optionalString(o, "artist", ok),
                json::optionalString(o, "artwork", ok), json::optionalString(o, "source", ok), false};
    const auto playing = json::requiredBool(o, "playing");
    if (!ok || !playing)
        return std::nullopt;
    d.playing = *playing;
    return d;
}

std::optional<QByteArray> SharedWidgetData::encode() const
{
    if (!finiteNumbers(*this))
        return std::nullopt;
    QJsonObject o;
    if (battery) {
        QJsonArray rows;
        for (const auto& b : *battery)
            rows.append(b.toJsonObject());
        o.insert("battery", rows);
    }
    putOptional(o, "clockStyle", clockStyle);
    if (weather)
        o.insert("weather", weather->toJsonObject());
    if (music)
        o.insert("music", music->toJsonObject());
    return QJsonDocument(o).toJson(QJsonDocument::Compact);
}

std::optional<SharedWidgetData> SharedWidgetData::decode(const QByteArray& data)
{
    const auto o = json::parseObject(data);
    if (!o)
        return std::nullopt;
    SharedWidgetData d;
    bool ok = true;
    if (const auto v = o->value("battery"); !v.isUndefined() && !v.isNull()) {
        if (!v.isArray())
            return std::nullopt;
        QList<BatteryDevice> rows;
        for (const auto& e : v.toArray()) {
            const auto row = BatteryDevice::fromJsonObject(e.toObject());
            if (!e.isObject() || !row)
                return std::nullopt;
            rows.append(*row);
        }
        d.battery = rows;
    }
    d.clockStyle = json::optionalString(*o, "clockStyle", ok);
    if (const auto v = o->value("weather"); v.isObject()) {
        d.weather = WeatherData::fromJsonObject(v.toObject());
        ok = ok && d.weather.has_value();
    }
    if (const auto v = o->value("music"); v.isObject()) {
        d.music = MusicData::fromJsonObject(v.toObject());
        ok = ok && d.music.has_value();
    }
    return ok ? std::optional(d) : std::nullopt;
}

#include "JsonRead.h"

#include <QJsonDocument>
#include <QJsonParseError>
#include <cmath>

namespace json {

std::optional<QJsonObject> parseObject(const QByteArray& data)
{
    QJsonParseError err{};
    const auto doc = QJsonDocument::fromJson(data, &err);
    if (err.error != QJsonParseError::NoError || !doc.isObject())
        return std::nullopt;
    return doc.object();
}

namespace {

std::optional<double> asDouble(const QJsonValue& v)
{
    if (!v.isDouble())
        return std::nullopt;
    return v.toDouble();
}

std::optional<qint64> asInt(const QJsonValue& v)
{
    if (!v.isDouble())
        return std::nullopt;
    const double d = v.toDouble();
    // A JSON number with a fraction, or beyond 2^63, is no integer.
    if (!std::isfinite(d) || d != std::trunc(d) || std::fabs(d) >= 9.2233720368547758e18)
        return std::nullopt;
    return static_cast<qint64>(d);
}

std::optional<bool> asBool(const QJsonValue& v)
{
    if (!v.isBool())
        return std::nullopt;
    return v.toBool();
}

std::optional<QString> asString(const QJsonValue& v)
{
    if (!v.isString())
        return std::nullopt;
    return v.toString();
}

template <typename F>
auto optionalRead(const QJsonObject& o, const QString& key, bool& ok, F read) -> decltype(read(QJsonValue()))
{
    const auto v = o.value(key);
    if (v.isUndefined() || v.isNull())
        return std::nullopt;
    auto r = read(v);
    if (!r)
        ok = false;
    return r;
}

template <typename T, typename F> std::optional<QList<T>> arrayOf(const QJsonValue& v, F read)
{
    if (!v.isArray())
        return std::nullopt;
    QList<T> out;
    const auto arr = v.toArray();
    out.reserve(arr.size());
    for (const auto& e : arr) {
        auto r = read(e);
        if (!r)
            return std::nullopt;
        out.append(*r);
    }
    return out;
}

} // namespace

std::optional<double> requiredDouble(const QJsonObject& o, const QString& key)
{
    return asDouble(o.value(key));
}
std::optional<qint64> requiredInt(const QJsonObject& o, const QString& key)
{
    return asInt(o.value(key));
}
std::optional<bool> requiredBool(const QJsonObject& o, const QString& key)
{
    return asBool(o.value(key));
}
std::optional<QString> requiredString(const QJsonObject& o, const QString& key)
{
    return asString(o.value(key));
}

std::optional<double> optionalDouble(const QJsonObject& o, const QString& key, bool& ok)
{
    return optionalRead(o, key, ok, asDouble);
}
std::optional<qint64> optionalInt(const QJsonObject& o, const QString& key, bool& ok)
{
    return optionalRead(o, key, ok, asInt);
}
std::optional<QString> optionalString(const QJsonObject& o, const QString& key, bool& ok)
{
    return optionalRead(o, key, ok, asString);
}

std::optional<QList<double>> doubleArray(const QJsonValue& v)
{
    return arrayOf<double>(v, asDouble);
}
std::optional<QList<qint64>> intArray(const QJsonValue& v)
{
    return arrayOf<qint64>(v, asInt);
}
std::optional<QList<QString>> stringArray(const QJsonValue& v)
{
    return arrayOf<QString>(v, asString);
}

} // namespace json

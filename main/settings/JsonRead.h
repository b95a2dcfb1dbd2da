#pragma once
// Strict typed reads from JSON, the rules every decoded record shares: a required field that is
// missing, null or of another type fails; an optional one may be missing or null; a double also
// takes a JSON integer; an integer must be a whole number.
#include <QByteArray>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>
#include <optional>

namespace json {

std::optional<QJsonObject> parseObject(const QByteArray& data);

std::optional<double> requiredDouble(const QJsonObject& o, const QString& key);
std::optional<qint64> requiredInt(const QJsonObject& o, const QString& key);
std::optional<bool> requiredBool(const QJsonObject& o, const QString& key);
std::optional<QString> requiredString(const QJsonObject& o, const QString& key);

// Optional reads: absent or null gives nothing; a present value of the wrong type clears `ok`.
std::optional<double> optionalDouble(const QJsonObject& o, const QString& key, bool& ok);
std::optional<qint64> optionalInt(const QJsonObject& o, const QString& key, bool& ok);
std::optional<QString> optionalString(const QJsonObject& o, const QString& key, bool& ok);

// Element-typed arrays; one element of the wrong type fails the whole array.
std::optional<QList<double>> doubleArray(const QJsonValue& v);
std::optional<QList<qint64>> intArray(const QJsonValue& v);
std::optional<QList<QString>> stringArray(const QJsonValue& v);

} // namespace json

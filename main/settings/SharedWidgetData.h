#pragma once
// The snapshot of what the widgets show, written to "widget-data.json" for other processes.
#include <QJsonObject>
#include <QList>
#include <QString>
#include <optional>

struct BatteryDevice {
    QString id;
    QString name;
    qint64 percent = 100;
    bool charging = false;
    QString type;

    QJsonObject toJsonObject() const;
    static std::optional<BatteryDevice> fromJsonObject(const QJsonObject& o); // every field required
    bool operator==(const BatteryDevice&) const = default;
};

struct WeatherData {
    std::optional<QString> city;
    std::optional<double> temp;
    std::optional<qint64> code;
    std::optional<double> apparent;

    QJsonObject toJsonObject() const;
    static std::optional<WeatherData> fromJsonObject(const QJsonObject& o);
    bool operator==(const WeatherData&) const = default;
};

struct MusicData {
    std::optional<QString> track;
    std::optional<QString> artist;
    std::optional<QString> artwork;
    std::optional<QString> source;
    bool playing = false;

    QJsonObject toJsonObject() const;
    static std::optional<MusicData> fromJsonObject(const QJsonObject& o);
    bool operator==(const MusicData&) const = default;
};

struct SharedWidgetData {
    std::optional<QList<BatteryDevice>> battery;
    std::optional<QString> clockStyle;
    std::optional<WeatherData> weather;
    std::optional<MusicData> music;

    // Compact UTF-8 JSON; fails (nothing) where a number cannot be written, such as an infinite
    // temperature, so a caller can leave the old file alone.
    std::optional<QByteArray> encode() const;
    static std::optional<SharedWidgetData> decode(const QByteArray& data);
    bool operator==(const SharedWidgetData&) const = default;
};

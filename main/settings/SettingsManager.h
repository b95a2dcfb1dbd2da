#pragma once
// The one store of what the user chose. Properties notify on every assignment (also of an equal
// value); assigning writes nothing: each writer also calls saveSetting, saveWeatherSettings or
// setPosition, which flush at once.
#include "DefaultsSuite.h"
#include "SettingsRecords.h"
#include "SharedWidgetData.h"

#include <QObject>
#include <QStringList>
#include <QVariant>
#include <QtQml/qqmlregistration.h>
#include <memory>
#include <optional>

class QQmlEngine;
class QJSEngine;

#define OMBRIX_SETTING(Type, name, Name)                                                                               \
    Q_PROPERTY(Type name READ name WRITE set##Name NOTIFY name##Changed)                                               \
  public:                                                                                                              \
    Type name() const                                                                                                  \
    {                                                                                                                  \
        return m_##name;                                                                                               \
    }                                                                                                                  \
    void set##Name(const Type& v)                                                                                      \
    {                                                                                                                  \
        m_##name = v;                                                                                                  \
        emit name##Changed();                                                                                          \
    }                                                                                                                  \
    Q_SIGNAL void name##Changed();                                                                                     \
                                                                                                                       \
  private:                                                                                                             \
    Type m_##name

class SettingsManager : public QObject {
    Q_OBJECT
    QML_NAMED_ELEMENT(Settings)
    QML_SINGLETON

    OMBRIX_SETTING(bool, clockEnabled, ClockEnabled) = false;
    OMBRIX_SETTING(bool, weatherEnabled, WeatherEnabled) = false;
    OMBRIX_SETTING(bool, batteryEnabled, BatteryEnabled) = false;
    OMBRIX_SETTING(bool, musicEnabled, MusicEnabled) = false;
    OMBRIX_SETTING(bool, clockClickThrough, ClockClickThrough) = false;
    OMBRIX_SETTING(bool, weatherClickThrough, WeatherClickThrough) = false;
    OMBRIX_SETTING(bool, batteryClickThrough, BatteryClickThrough) = false;
    OMBRIX_SETTING(bool, musicClickThrough, MusicClickThrough) = false;
    OMBRIX_SETTING(QString, clockSize, ClockSize) = "small";
    OMBRIX_SETTING(QString, weatherSize, WeatherSize) = "small";
    OMBRIX_SETTING(QString, batterySize, BatterySize) = "small";
    OMBRIX_SETTING(QString, musicSize, MusicSize) = "medium";
    OMBRIX_SETTING(QString, clockStyle, ClockStyle) = "analog";
    OMBRIX_SETTING(QString, glassTheme, GlassTheme) = "transparent";
    OMBRIX_SETTING(WeatherSettings, weatherSettings, WeatherSettings);
    OMBRIX_SETTING(QStringList, batteryVisibleDevices, BatteryVisibleDevices) = {"macbook", "watch", "mouse",
                                                                                 "airpods"};
    OMBRIX_SETTING(SharedWidgetData, sharedData, SharedData);

  public:
    static constexpr const char* suiteName = "group.com.ombrixwidget";

    static SettingsManager& shared();
    static SettingsManager* create(QQmlEngine*, QJSEngine*); // the QML singleton is shared()

    // A store on a given suite; the application uses shared().
    explicit SettingsManager(std::unique_ptr<DefaultsSuite> suite);

    void loadSettings();
    Q_INVOKABLE void saveSetting(const QVariant& value, const QString& key);
    void saveWeatherSettings(const WeatherSettings& settings);
    void setPosition(const std::optional<Position>& position, const QString& name);

    std::optional<Position> clockPosition() const { return getPosition("clock"); }
    std::optional<Position> weatherPosition() const { return getPosition("weather"); }
    std::optional<Position> batteryPosition() const { return getPosition("battery"); }
    std::optional<Position> musicPosition() const { return getPosition("music"); }
    void setClockPosition(const std::optional<Position>& p) { setPosition(p, "clock"); }
    void setWeatherPosition(const std::optional<Position>& p) { setPosition(p, "weather"); }
    void setBatteryPosition(const std::optional<Position>& p) { setPosition(p, "battery"); }
    void setMusicPosition(const std::optional<Position>& p) { setPosition(p, "music"); }
    // Every store of a widget's position, written or not.
    Q_SIGNAL void positionChanged(const QString& name);

    // Writes sharedData, with the current clockStyle in the written copy, to widget-data.json.
    Q_INVOKABLE void updateSharedWidgetData();
    static QString sharedDataFilePath();

    // Raw text read of the suite for configuration that has no property (service hosts).
    std::optional<QString> configString(const QString& key) const;

  private:
    std::optional<Position> getPosition(const QString& name) const;

    std::unique_ptr<DefaultsSuite> m_defaults;
};

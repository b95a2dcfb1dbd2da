#pragma once
// The one store of what the user chose. Each user action has one typed setter here that writes the
// suite at once, then assigns and notifies. A property's own WRITE only assigns, writing nothing; it
// notifies on every assignment, also of an equal value.
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
    // The generic write under a raw key; the typed setters below go through it.
    void saveSetting(const QVariant& value, const QString& key);

    // Per widget kind ("clock", "weather", "battery", "music"); another kind is ignored. Each also
    // tells the application through the kind's signal below.
    Q_INVOKABLE void setWidgetEnabled(const QString& kind, bool enabled);
    Q_INVOKABLE void setClickThrough(const QString& kind, bool enabled);
    Q_INVOKABLE void setWidgetSize(const QString& kind, const QString& size);
    Q_SIGNAL void widgetEnabledChanged(const QString& kind, bool enabled);
    Q_SIGNAL void clickThroughChanged(const QString& kind, bool enabled);
    Q_SIGNAL void widgetSizeChanged(const QString& kind, const QString& size);

    // The clock's style is also in widget-data.json, which it rewrites.
    Q_INVOKABLE void setClockFace(const QString& style);
    Q_INVOKABLE void setTheme(const QString& theme);
    // The ticked list keeps the order of ticking; readers treat it as a set.
    Q_INVOKABLE void setDeviceVisible(const QString& key, bool visible);
    void saveWeatherSettings(const WeatherSettings& settings);

    // A widget's origin; an absent one removes the stored one. Undecodable bytes read as absent.
    void setPosition(const std::optional<Position>& position, const QString& name);
    std::optional<Position> position(const QString& name) const;
    std::optional<Position> clockPosition() const { return position("clock"); }
    std::optional<Position> weatherPosition() const { return position("weather"); }
    std::optional<Position> batteryPosition() const { return position("battery"); }
    std::optional<Position> musicPosition() const { return position("music"); }
    // Every store of a widget's position, written or not.
    Q_SIGNAL void positionChanged(const QString& name);

    // Each widget model replaces its part of sharedData, which goes to widget-data.json at once.
    void setBatteryData(const QList<BatteryDevice>& devices);
    void setWeatherData(const WeatherData& weather);
    void setMusicData(const MusicData& music);
    // Writes sharedData, with the current clockStyle in the written copy, to widget-data.json: the
    // whole file, and only when its bytes change.
    void updateSharedWidgetData();
    static QString sharedDataFilePath();

    // Raw text read of the suite for configuration that has no property (service hosts).
    std::optional<QString> configString(const QString& key) const;

  private:
    // Writes `value` under `key`, then assigns the kind's property; false for an unknown kind.
    bool saveForKind(const QString& kind, const char* property, const char* key, const QVariant& value);

    std::unique_ptr<DefaultsSuite> m_defaults;
    // Where the shared data file was last written, and with what.
    QString m_sharedDataPath;
    QByteArray m_sharedDataBytes;
};

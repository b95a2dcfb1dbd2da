#include "SettingsManager.h"

#include <QDir>
#include <QFile>
#include <QQmlEngine>

namespace {
QString positionKey(const QString& name)
{
    return "widget." + name + ".position";
}
} // namespace

SettingsManager& SettingsManager::shared()
{
    static SettingsManager* instance = [] {
        auto suite = DefaultsSuite::open(suiteName);
        if (!suite)
            suite = DefaultsSuite::standard();
        return new SettingsManager(std::move(suite));
    }();
    return *instance;
}

SettingsManager* SettingsManager::create(QQmlEngine*, QJSEngine*)
{
    auto* s = &shared();
    QQmlEngine::setObjectOwnership(s, QQmlEngine::CppOwnership);
    return s;
}

SettingsManager::SettingsManager(std::unique_ptr<DefaultsSuite> suite) : m_defaults(std::move(suite))
{
    loadSettings();
}

void SettingsManager::loadSettings()
{
    const auto& d = *m_defaults;
    setClockEnabled(d.boolForKey("widget.clock.enabled").value_or(false));
    setWeatherEnabled(d.boolForKey("widget.weather.enabled").value_or(false));
    setBatteryEnabled(d.boolForKey("widget.battery.enabled").value_or(false));
    setMusicEnabled(d.boolForKey("widget.music.enabled").value_or(false));
    setClockClickThrough(d.boolForKey("widget.clock.clickThrough").value_or(false));
    setWeatherClickThrough(d.boolForKey("widget.weather.clickThrough").value_or(false));
    setBatteryClickThrough(d.boolForKey("widget.battery.clickThrough").value_or(false));
    setMusicClickThrough(d.boolForKey("widget.music.clickThrough").value_or(false));
    setClockSize(d.stringForKey("widget.clock.size").value_or("small"));
    setWeatherSize(d.stringForKey("widget.weather.size").value_or("small"));
    setBatterySize(d.stringForKey("widget.battery.size").value_or("small"));
    setMusicSize(d.stringForKey("widget.music.size").value_or("medium"));
    setClockStyle(d.stringForKey("widget.clock.style").value_or("analog"));
    setGlassTheme(d.stringForKey("glass-theme").value_or("transparent"));
    if (const auto data = d.dataForKey("weather"))
        setWeatherSettings(WeatherSettings::fromJson(*data).value_or(WeatherSettings()));
    setBatteryVisibleDevices(d.stringArrayForKey("widget.battery.visibleDevices")
                                 .value_or(QStringList{"macbook", "watch", "mouse", "airpods"}));
}

void SettingsManager::saveSetting(const QVariant& value, const QString& key)
{
    // QML hands lists over as QVariantList; the suite keeps lists of text.
    if (value.typeId() == QMetaType::QVariantList)
        m_defaults->setObject(value.toStringList(), key);
    else
        m_defaults->setObject(value, key);
    m_defaults->synchronize();
}

bool SettingsManager::saveForKind(const QString& kind, const char* property, const char* key, const QVariant& value)
{
    const QByteArray name = kind.toLatin1() + property;
    if (metaObject()->indexOfProperty(name.constData()) < 0)
        return false;
    // Written before observers hear of it, so any of them may read the suite.
    saveSetting(value, "widget." + kind + "." + key);
    setProperty(name.constData(), value);
    return true;
}

void SettingsManager::setWidgetEnabled(const QString& kind, bool enabled)
{
    if (saveForKind(kind, "Enabled", "enabled", enabled))
        emit widgetEnabledChanged(kind, enabled);
}

void SettingsManager::setClickThrough(const QString& kind, bool enabled)
{
    if (saveForKind(kind, "ClickThrough", "clickThrough", enabled))
        emit clickThroughChanged(kind, enabled);
}

void SettingsManager::setWidgetSize(const QString& kind, const QString& size)
{
    if (saveForKind(kind, "Size", "size", size))
        emit widgetSizeChanged(kind, size);
}

void SettingsManager::setClockFace(const QString& style)
{
    saveSetting(style, "widget.clock.style");
    setClockStyle(style);
    updateSharedWidgetData();
}

void SettingsManager::setTheme(const QString& theme)
{
    saveSetting(theme, "glass-theme");
    setGlassTheme(theme);
}

void SettingsManager::setDeviceVisible(const QString& key, bool visible)
{
    QStringList devices = m_batteryVisibleDevices;
    if (visible && !devices.contains(key))
        devices.append(key);
    if (!visible)
        devices.removeAll(key);
    saveSetting(devices, "widget.battery.visibleDevices");
    setBatteryVisibleDevices(devices);
}

void SettingsManager::saveWeatherSettings(const WeatherSettings& settings)
{
    saveSetting(settings.toJson(), "weather");
    setWeatherSettings(settings);
}

std::optional<Position> SettingsManager::position(const QString& name) const
{
    const auto data = m_defaults->dataForKey(positionKey(name));
    if (!data)
        return std::nullopt;
    return Position::fromJson(*data);
}

void SettingsManager::setPosition(const std::optional<Position>& position, const QString& name)
{
    if (position)
        m_defaults->setObject(position->toJson(), positionKey(name));
    else
        m_defaults->removeObject(positionKey(name));
    m_defaults->synchronize();
    emit positionChanged(name);
}

void SettingsManager::setBatteryData(const QList<BatteryDevice>& devices)
{
    m_sharedData.battery = devices;
    emit sharedDataChanged();
    updateSharedWidgetData();
}

void SettingsManager::setWeatherData(const WeatherData& weather)
{
    m_sharedData.weather = weather;
    emit sharedDataChanged();
    updateSharedWidgetData();
}

void SettingsManager::setMusicData(const MusicData& music)
{
    m_sharedData.music = music;
    emit sharedDataChanged();
    updateSharedWidgetData();
}

QString SettingsManager::sharedDataFilePath()
{
    // No App Group container here: the fallback below the home directory.
    return QDir::homePath() + "/Library/Group Containers/" + suiteName + "/widget-data.json";
}

void SettingsManager::updateSharedWidgetData()
{
    SharedWidgetData copy = m_sharedData;
    copy.clockStyle = m_clockStyle;
    const auto bytes = copy.encode();
    if (!bytes)
        return;
    const QString path = sharedDataFilePath();
    // Polls mostly find the same readings: the file is left alone while it holds the bytes last written.
    if (path == m_sharedDataPath && *bytes == m_sharedDataBytes && QFileInfo::exists(path))
        return;
    QDir().mkpath(QFileInfo(path).absolutePath());
    QFile f(path);
    if (f.open(QIODevice::WriteOnly | QIODevice::Truncate) && f.write(*bytes) == bytes->size()) {
        m_sharedDataPath = path;
        m_sharedDataBytes = *bytes;
    }
}

std::optional<QString> SettingsManager::configString(const QString& key) const
{
    return m_defaults->stringForKey(key);
}

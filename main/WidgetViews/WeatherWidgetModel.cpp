#include "WeatherWidgetModel.h"

#include "SettingsManager.h"
#include "WeatherMonitor.h"

#include <QDate>
#include <QLocale>
#include <QVariantMap>
#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

namespace {

// The code tables are chains of tests read from the top: the first row that holds decides.
// Only the first row asks for equality, so a negative code falls to the second.
template <typename Row, std::size_t N> const Row& firstMatch(const Row (&rows)[N], qint64 code)
{
    for (const Row& row : rows) {
        if (row.exact ? code == row.bound : code <= row.bound)
            return row;
    }
    return rows[N - 1];
}

struct WmoRow {
    qint64 bound;
    bool exact;
    const char* emoji;
    const char* desc;
};

const WmoRow wmoRows[] = {
    {0, true, "\u2600\uFE0F", "Sereno"},
    {2, false, "\u26C5", "Parz. nuvoloso"},
    {3, false, "\u2601\uFE0F", "Nuvoloso"},
    {49, false, "\U0001F32B\uFE0F", "Nebbia"},
    {57, false, "\U0001F327\uFE0F", "Pioggerella"},
    {67, false, "\U0001F327\uFE0F", "Pioggia"},
    {77, false, "\u2744\uFE0F", "Neve"},
    {82, false, "\U0001F326\uFE0F", "Rovesci"},
    {99, false, "\u26C8\uFE0F", "Temporale"},
    {std::numeric_limits<qint64>::max(), false, "\U0001F321\uFE0F", "Sconosciuto"},
};

struct GlowRow {
    qint64 bound;
    bool exact;
    int red, green, blue;
    double opacity;
};

const GlowRow glowRows[] = {
    {0, true, 255, 200, 50, 1.0},
    {2, false, 255, 200, 50, 0.6},
    {49, false, 150, 180, 220, 0.6},
    {77, false, 80, 140, 255, 1.0},
    {std::numeric_limits<qint64>::max(), false, 100, 200, 255, 1.0},
};

} // namespace

WeatherWidgetModel::WeatherWidgetModel(QObject* parent) : QObject(parent)
{
    auto& settings = SettingsManager::shared();
    m_seenCity = settings.weatherSettings().city;
    m_seenUseManual = settings.weatherSettings().useManual;
    connect(&settings, &SettingsManager::weatherSettingsChanged, this, &WeatherWidgetModel::onWeatherSettingsChanged);

    m_timer.setInterval(refreshIntervalMs);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &WeatherWidgetModel::loadWeatherData);
}

void WeatherWidgetModel::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    emit activeChanged();
    // Off screen nothing ticks; coming on screen loads at once and starts the period afresh.
    if (!active) {
        m_timer.stop();
        return;
    }
    m_timer.start();
    loadWeatherData();
}

void WeatherWidgetModel::onWeatherSettingsChanged()
{
    const auto s = SettingsManager::shared().weatherSettings();
    const bool cityChanged = s.city != m_seenCity;
    const bool choiceChanged = s.useManual != m_seenUseManual;
    m_seenCity = s.city;
    m_seenUseManual = s.useManual;
    if (!m_active)
        return;
    // Each is a trigger of its own, as a change of lat or lon alone is none.
    if (cityChanged)
        loadWeatherData();
    if (choiceChanged)
        loadWeatherData();
}

void WeatherWidgetModel::loadWeatherData()
{
    setLoading(true);
    setConnectionError(false);
    const auto s = SettingsManager::shared().weatherSettings();
    if (s.useManual && s.lat && s.lon) {
        fetchWeatherFor(*s.lat, *s.lon, s.city.section(',', 0, 0));
        return;
    }
    WeatherMonitor::shared().fetchIPLocation(this, [this](const WeatherResult<IPLocation>& r) {
        if (const auto* location = std::get_if<IPLocation>(&r))
            fetchWeatherFor(location->lat, location->lon, location->city);
        else
            failLoad();
    });
}

void WeatherWidgetModel::fetchWeatherFor(double latitude, double longitude, const QString& city)
{
    WeatherMonitor::shared().fetchWeather(latitude, longitude, this,
                                          [this, city](const WeatherResult<WeatherResponse>& r) {
                                              if (const auto* reply = std::get_if<WeatherResponse>(&r))
                                                  applyWeather(city, *reply);
                                              else
                                                  failLoad();
                                          });
}

void WeatherWidgetModel::applyWeather(const QString& city, const WeatherResponse& reply)
{
    setCityName(city);
    m_weatherData = reply;
    emit weatherDataChanged();
    setLoading(false);
    updateGlow(reply.current.weathercode);

    SettingsManager::shared().setWeatherData(
        WeatherData{city, reply.current.temperature_2m, reply.current.weathercode, reply.current.apparent_temperature});
}

void WeatherWidgetModel::failLoad()
{
    // What was shown stays; the view puts the error panel over it until the next success.
    setConnectionError(true);
    setLoading(false);
}

void WeatherWidgetModel::updateGlow(qint64 code)
{
    setGlowColor(glowColorFor(code));
}

QString WeatherWidgetModel::temperatureText() const
{
    return m_weatherData ? formatTemperature(m_weatherData->current.temperature_2m) : QString();
}

QString WeatherWidgetModel::weatherEmoji() const
{
    return m_weatherData ? wmoEmoji(m_weatherData->current.weathercode) : QString();
}

QString WeatherWidgetModel::weatherDescription() const
{
    return m_weatherData ? wmoDesc(m_weatherData->current.weathercode) : QString();
}

QString WeatherWidgetModel::highLowText() const
{
    return hasDaily() ? highLowLine(*m_weatherData->daily) : QString();
}

QVariantList WeatherWidgetModel::forecastRows() const
{
    QVariantList list;
    if (!hasDaily())
        return list;
    for (const auto& row : forecastRowsFor(*m_weatherData->daily)) {
        list.append(QVariantMap{
            {"dayName", row.dayName}, {"emoji", row.emoji}, {"maxText", row.maxText}, {"minText", row.minText}});
    }
    return list;
}

QString WeatherWidgetModel::wmoEmoji(qint64 code)
{
    return QString::fromUtf8(firstMatch(wmoRows, code).emoji);
}

QString WeatherWidgetModel::wmoDesc(qint64 code)
{
    return QString::fromUtf8(firstMatch(wmoRows, code).desc);
}

QColor WeatherWidgetModel::glowColorFor(qint64 code)
{
    const auto& row = firstMatch(glowRows, code);
    QColor c(row.red, row.green, row.blue);
    c.setAlphaF(row.opacity);
    return c;
}

QString WeatherWidgetModel::formatTemperature(double value)
{
    const double whole = std::round(value); // halves away from zero; -0.4 gives -0, shown as 0
    if (!std::isfinite(whole) || std::fabs(whole) >= 9223372036854775808.0)
        return QString::fromUtf8("\u2014\u00B0");
    return QString::number(static_cast<qint64>(whole)) + QString::fromUtf8("\u00B0");
}

QString WeatherWidgetModel::shortDayName(const QString& date)
{
    const QDate day = QDate::fromString(date, "yyyy-MM-dd");
    if (!day.isValid())
        return QString::fromUtf8("\u2014");
    const QString name = QLocale(QLocale::Italian, QLocale::Italy).toString(day, "ddd");
    return name.left(1).toUpper() + name.mid(1).toLower();
}

QString WeatherWidgetModel::highLowLine(const WeatherResponse::DailyForecast& daily)
{
    if (daily.temperature_2m_max.isEmpty() || daily.temperature_2m_min.isEmpty())
        return {};
    return "H:" + formatTemperature(daily.temperature_2m_max.first()) +
           " L:" + formatTemperature(daily.temperature_2m_min.first());
}

QList<WeatherWidgetModel::ForecastRow> WeatherWidgetModel::forecastRowsFor(const WeatherResponse::DailyForecast& daily)
{
    const qsizetype days = std::min({daily.time.size(), daily.weathercode.size(), daily.temperature_2m_max.size(),
                                     daily.temperature_2m_min.size(), qsizetype(5)});
    QList<ForecastRow> rows;
    for (qsizetype i = 1; i < days; ++i) {
        rows.append({shortDayName(daily.time[i]), wmoEmoji(daily.weathercode[i]),
                     formatTemperature(daily.temperature_2m_max[i]), formatTemperature(daily.temperature_2m_min[i])});
    }
    return rows;
}

void WeatherWidgetModel::setLoading(bool v)
{
    m_loading = v;
    emit loadingChanged();
}

void WeatherWidgetModel::setConnectionError(bool v)
{
    m_connectionError = v;
    emit connectionErrorChanged();
}

void WeatherWidgetModel::setCityName(const QString& v)
{
    m_cityName = v;
    emit cityNameChanged();
}

void WeatherWidgetModel::setGlowColor(const QColor& v)
{
    m_glowColor = v;
    emit glowColorChanged();
}

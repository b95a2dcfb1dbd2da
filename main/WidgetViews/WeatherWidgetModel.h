#pragma once
// State of the weather widget: the place, the last forecast that arrived, and the load that
// refreshes them. The view binds `active` to its visibility. A load starts when the model becomes
// active, when the text of the stored city or the manual/automatic choice changes, and every
// 15 minutes while active. Loads overlap freely; the last to finish sets the state.
#include "WeatherReplies.h"

#include <QColor>
#include <QObject>
#include <QString>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>
#include <optional>

class WeatherWidgetModel : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
    Q_PROPERTY(bool loading READ loading NOTIFY loadingChanged)
    Q_PROPERTY(bool connectionError READ connectionError NOTIFY connectionErrorChanged)
    Q_PROPERTY(QString cityName READ cityName NOTIFY cityNameChanged)
    Q_PROPERTY(QColor glowColor READ glowColor NOTIFY glowColorChanged)
    // What the view shows of weatherData; they change together.
    Q_PROPERTY(bool hasWeatherData READ hasWeatherData NOTIFY weatherDataChanged)
    Q_PROPERTY(QString temperatureText READ temperatureText NOTIFY weatherDataChanged)
    Q_PROPERTY(QString weatherEmoji READ weatherEmoji NOTIFY weatherDataChanged)
    Q_PROPERTY(QString weatherDescription READ weatherDescription NOTIFY weatherDataChanged)
    Q_PROPERTY(QString highLowText READ highLowText NOTIFY weatherDataChanged) // "" when not shown
    Q_PROPERTY(bool hasDaily READ hasDaily NOTIFY weatherDataChanged)
    // One map per forecast row: dayName, emoji, maxText, minText.
    Q_PROPERTY(QVariantList forecastRows READ forecastRows NOTIFY weatherDataChanged)

  public:
    static constexpr int refreshIntervalMs = 900 * 1000;

    struct ForecastRow {
        QString dayName;
        QString emoji;
        QString maxText;
        QString minText;
        bool operator==(const ForecastRow&) const = default;
    };

    explicit WeatherWidgetModel(QObject* parent = nullptr);

    bool active() const { return m_active; }
    void setActive(bool active);
    bool loading() const { return m_loading; }
    bool connectionError() const { return m_connectionError; }
    QString cityName() const { return m_cityName; }
    QColor glowColor() const { return m_glowColor; }
    const std::optional<WeatherResponse>& weatherData() const { return m_weatherData; }

    bool hasWeatherData() const { return m_weatherData.has_value(); }
    QString temperatureText() const;
    QString weatherEmoji() const;
    QString weatherDescription() const;
    QString highLowText() const;
    bool hasDaily() const { return m_weatherData && m_weatherData->daily; }
    QVariantList forecastRows() const;

    Q_INVOKABLE void loadWeatherData();
    void updateGlow(qint64 code);

    // The rules of what is shown.
    static QString wmoEmoji(qint64 code);
    static QString wmoDesc(qint64 code);
    static QColor glowColorFor(qint64 code);
    // Whole degrees, halves away from zero, then "°"; "—°" where no whole number fits.
    static QString formatTemperature(double value);
    static QString shortDayName(const QString& date);
    static QString highLowLine(const WeatherResponse::DailyForecast& daily);
    // Days 1 to 4, as far as all four arrays reach.
    static QList<ForecastRow> forecastRowsFor(const WeatherResponse::DailyForecast& daily);

    // Tests shorten the period and look whether it runs.
    void setRefreshInterval(int milliseconds) { m_timer.setInterval(milliseconds); }
    bool refreshScheduled() const { return m_timer.isActive(); }

  signals:
    void activeChanged();
    void loadingChanged();
    void connectionErrorChanged();
    void cityNameChanged();
    void glowColorChanged();
    void weatherDataChanged();

  private:
    void fetchWeatherFor(double latitude, double longitude, const QString& city);
    void applyWeather(const QString& city, const WeatherResponse& reply);
    void failLoad();
    void onWeatherSettingsChanged();

    void setLoading(bool v);
    void setConnectionError(bool v);
    void setCityName(const QString& v);
    void setGlowColor(const QColor& v);

    bool m_active = false;
    bool m_loading = true;
    bool m_connectionError = false;
    QString m_cityName = "MILANO";
    QColor m_glowColor = Qt::transparent;
    std::optional<WeatherResponse> m_weatherData;
    QTimer m_timer;
    // The last city text and choice seen, so that only a real change reloads.
    QString m_seenCity;
    bool m_seenUseManual = false;
};

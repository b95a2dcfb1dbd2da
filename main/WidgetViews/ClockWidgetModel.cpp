#include "ClockWidgetModel.h"

#include "SettingsManager.h"

#include <QLocale>

namespace {

ClockWidgetModel::TimeSource& timeSource()
{
    static ClockWidgetModel::TimeSource source;
    return source;
}

QLocale italian()
{
    return QLocale(QLocale::Italian, QLocale::Italy);
}

QString capitalizedWords(const QString& text)
{
    QString out = text;
    bool start = true;
    for (QChar& c : out) {
        if (c.isLetter()) {
            if (start)
                c = c.toUpper();
            start = false;
        } else {
            start = c.isSpace();
        }
    }
    return out;
}

} // namespace

void ClockWidgetModel::setTimeSource(TimeSource source)
{
    timeSource() = std::move(source);
}

ClockWidgetModel::ClockWidgetModel(QObject* parent) : QObject(parent)
{
    m_now = timeSource() ? timeSource() : TimeSource([] { return QDateTime::currentDateTime(); });
    m_currentDate = m_now();
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &ClockWidgetModel::tick);
    m_watchedCity = SettingsManager::shared().weatherSettings().city;
    connect(&SettingsManager::shared(), &SettingsManager::weatherSettingsChanged, this,
            &ClockWidgetModel::weatherSettingsChanged);
}

void ClockWidgetModel::setActive(bool active)
{
    if (active == m_active)
        return;
    m_active = active;
    if (active) {
        // Coming on screen: the label is looked up once, and the clock ticks on whole seconds.
        updateCity();
        tick();
        m_timer.start(1000);
    } else {
        m_timer.stop();
    }
    emit activeChanged();
}

void ClockWidgetModel::tick()
{
    m_currentDate = m_now();
    // Each tick lands just after the next whole second, so the seconds never lag the system clock.
    const int msToNext = 1000 - m_currentDate.time().msec();
    m_timer.setInterval(msToNext + 5);
    emit currentDateChanged();
}

void ClockWidgetModel::weatherSettingsChanged()
{
    // Only a new text of the city counts; useManual alone does not refresh the label.
    const QString city = SettingsManager::shared().weatherSettings().city;
    if (city == m_watchedCity)
        return;
    m_watchedCity = city;
    if (m_active)
        updateCity();
}

void ClockWidgetModel::updateCity()
{
    const auto& settings = SettingsManager::shared();
    const WeatherSettings w = settings.weatherSettings();
    if (w.useManual) {
        m_city = w.city.section(',', 0, 0).toUpper();
        emit cityChanged();
        return;
    }
    const auto& weather = settings.sharedData().weather;
    if (weather && weather->city) {
        m_city = weather->city->toUpper();
        emit cityChanged();
    }
}

QString ClockWidgetModel::shortDateString(const QDateTime& d)
{
    return italian().toString(d, "ddd d").toUpper();
}

QString ClockWidgetModel::fullDateString(const QDateTime& d)
{
    return italian().toString(d, "dddd, d MMM").toUpper();
}

QString ClockWidgetModel::timeString(const QDateTime& d)
{
    return d.toString("HH:mm");
}

QString ClockWidgetModel::secondsString(const QDateTime& d)
{
    return QString::number(d.time().second()) + " s";
}

QString ClockWidgetModel::weekdayName(const QDateTime& d)
{
    return capitalizedWords(italian().toString(d, "dddd"));
}

QString ClockWidgetModel::dayNumString(const QDateTime& d)
{
    return d.toString("d");
}

double ClockWidgetModel::hourAngle(const QDateTime& d)
{
    return (d.time().hour() % 12) * 30.0 + d.time().minute() * 0.5;
}

double ClockWidgetModel::minuteAngle(const QDateTime& d)
{
    return d.time().minute() * 6.0 + d.time().second() * 0.1;
}

double ClockWidgetModel::secondAngle(const QDateTime& d)
{
    return d.time().second() * 6.0;
}

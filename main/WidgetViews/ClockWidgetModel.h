#pragma once
// The clock's state: the instant it shows, the city label, and the texts and angles derived from
// them. Time comes from a replaceable source so a moment can be frozen.
#include <QDateTime>
#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>
#include <functional>

class ClockWidgetModel : public QObject {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)
    Q_PROPERTY(QDateTime currentDate READ currentDate NOTIFY currentDateChanged)
    Q_PROPERTY(QString city READ city NOTIFY cityChanged)
    Q_PROPERTY(QString shortDateString READ shortDateString NOTIFY currentDateChanged)
    Q_PROPERTY(QString fullDateString READ fullDateString NOTIFY currentDateChanged)
    Q_PROPERTY(QString timeString READ timeString NOTIFY currentDateChanged)
    Q_PROPERTY(QString secondsString READ secondsString NOTIFY currentDateChanged)
    Q_PROPERTY(QString weekdayName READ weekdayName NOTIFY currentDateChanged)
    Q_PROPERTY(QString dayNumString READ dayNumString NOTIFY currentDateChanged)
    Q_PROPERTY(double hourAngle READ hourAngle NOTIFY currentDateChanged)
    Q_PROPERTY(double minuteAngle READ minuteAngle NOTIFY currentDateChanged)
    Q_PROPERTY(double secondAngle READ secondAngle NOTIFY currentDateChanged)

  public:
    using TimeSource = std::function<QDateTime()>;

    explicit ClockWidgetModel(QObject* parent = nullptr);

    // Replaces the clock of every model made afterwards (and of none before); empty restores the
    // system clock.
    static void setTimeSource(TimeSource source);

    bool active() const { return m_active; }
    void setActive(bool active);
    QDateTime currentDate() const { return m_currentDate; }
    QString city() const { return m_city; }

    QString shortDateString() const { return shortDateString(m_currentDate); }
    QString fullDateString() const { return fullDateString(m_currentDate); }
    QString timeString() const { return timeString(m_currentDate); }
    QString secondsString() const { return secondsString(m_currentDate); }
    QString weekdayName() const { return weekdayName(m_currentDate); }
    QString dayNumString() const { return dayNumString(m_currentDate); }
    double hourAngle() const { return hourAngle(m_currentDate); }
    double minuteAngle() const { return minuteAngle(m_currentDate); }
    double secondAngle() const { return secondAngle(m_currentDate); }

    static QString shortDateString(const QDateTime& d);
    static QString fullDateString(const QDateTime& d);
    static QString timeString(const QDateTime& d);
    static QString secondsString(const QDateTime& d);
    static QString weekdayName(const QDateTime& d);
    static QString dayNumString(const QDateTime& d);
    static double hourAngle(const QDateTime& d);
    static double minuteAngle(const QDateTime& d);
    static double secondAngle(const QDateTime& d);

    Q_INVOKABLE void updateCity();

  signals:
    void activeChanged();
    void currentDateChanged();
    void cityChanged();

  private:
    void tick();
    void weatherSettingsChanged();

    TimeSource m_now;
    QDateTime m_currentDate;
    QString m_city = "MILANO";
    QString m_watchedCity;
    bool m_active = false;
    QTimer m_timer;
};

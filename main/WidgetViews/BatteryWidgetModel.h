#pragma once
// State of the battery widget: the device list from the monitor, the computer's name, the glow of
// the frame and the rings to draw. Polls every 4 seconds, but only while the view is active.
#include "BatteryRingListModel.h"
#include "SharedWidgetData.h"

#include <QColor>
#include <QObject>
#include <QStringList>
#include <QTimer>
#include <QVariantList>
#include <QtQml/qqmlregistration.h>

class BatteryWidgetModel : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QVariantList devices READ devices NOTIFY devicesChanged)
    Q_PROPERTY(QString computerName READ computerName NOTIFY computerNameChanged)
    Q_PROPERTY(QColor glowColor READ glowColor NOTIFY glowColorChanged)
    Q_PROPERTY(bool isSmall READ isSmall NOTIFY isSmallChanged)
    Q_PROPERTY(BatteryRingListModel* visibleRings READ visibleRings CONSTANT)
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)

  public:
    static constexpr int refreshIntervalMs = 4000;

    explicit BatteryWidgetModel(QObject* parent = nullptr);

    QVariantList devices() const;
    const QList<BatteryDevice>& deviceList() const { return m_devices; }
    QString computerName() const { return m_computerName; }
    QColor glowColor() const { return glowColorFor(m_devices); }
    bool isSmall() const;
    BatteryRingListModel* visibleRings() { return &m_rings; }
    bool active() const { return m_active; }
    // Bound to the view's visibility: becoming active refreshes, reads the name and starts the timer.
    void setActive(bool active);

    Q_INVOKABLE void refreshDevices();
    Q_INVOKABLE QString iconName(const QString& type) const { return iconNameFor(type); }

    // The system's named colours.
    static QColor green() { return QColor(52, 199, 89); }
    static QColor orange() { return QColor(255, 149, 0); }
    static QColor red() { return QColor(255, 59, 48); }

    // Pure rules of the widget.
    static QColor glowColorFor(const QList<BatteryDevice>& devices);
    static QString visibilityCategory(const QString& type);
    static QList<BatteryRing> ringsFor(const QList<BatteryDevice>& devices, const QString& batterySize,
                                       const QStringList& visibleCategories, const QString& computerName);
    static QString iconNameFor(const QString& type);
    static QColor arcColor(qint64 percent);
    static QString percentText(qint64 percent);
    static QString statusText(const BatteryRing& ring); // the row under the name

  signals:
    void devicesChanged();
    void computerNameChanged();
    void glowColorChanged();
    void isSmallChanged();
    void activeChanged();

  private:
    void updateRings();

    QList<BatteryDevice> m_devices;
    bool m_hasReading = false;
    QString m_computerName = QStringLiteral("MacBook");
    bool m_active = false;
    QTimer m_timer;
    BatteryRingListModel m_rings;
};

#pragma once
// State of the battery widget: the device list from the monitor, the glow of the frame and the
// rings to draw. Polls every 4 seconds, but only while the view is active.
#include "BatteryRingListModel.h"
#include "BatteryRules.h"
#include "SystemWords.h"

#include <QColor>
#include <QObject>
#include <QTimer>
#include <QtQml/qqmlregistration.h>

class BatteryWidgetModel : public QObject {
    Q_OBJECT
    QML_ELEMENT

    Q_PROPERTY(QColor glowColor READ glowColor NOTIFY glowColorChanged)
    Q_PROPERTY(BatteryRingListModel* visibleRings READ visibleRings CONSTANT)
    Q_PROPERTY(bool active READ active WRITE setActive NOTIFY activeChanged)

  public:
    static constexpr int refreshIntervalMs = 4000;

    explicit BatteryWidgetModel(QObject* parent = nullptr);

    const QList<BatteryDevice>& deviceList() const { return m_devices; }
    QColor glowColor() const { return batteryrules::glowColor(m_devices); }
    BatteryRingListModel* visibleRings() { return &m_rings; }
    bool active() const { return m_active; }
    // Bound to the view's visibility: becoming active refreshes, reads the name and starts the timer.
    void setActive(bool active);

    Q_INVOKABLE void refreshDevices();

  signals:
    void glowColorChanged();
    void activeChanged();

  private:
    void updateRings();

    QList<BatteryDevice> m_devices;
    bool m_hasReading = false;
    QString m_computerName = systemwords::computerName;
    bool m_active = false;
    QTimer m_timer;
    BatteryRingListModel m_rings;
};

#pragma once
// The analog clock's dial: the ring of 60 ticks as one stroked path, painted once per size.
#include <QPainterPath>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class AnalogClockDial : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT

  public:
    explicit AnalogClockDial(QQuickItem* parent = nullptr);
    // The 60 tick segments for a w by h box, y down.
    static QPainterPath tickPath(double w, double h);
    void paint(QPainter* painter) override;
};

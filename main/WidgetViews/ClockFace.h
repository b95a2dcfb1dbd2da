#pragma once
// The analog clock's drawing: the ring of 60 ticks as one stroked path, and one hand.
#include <QColor>
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

class ClockHand : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double angle READ angle WRITE setAngle NOTIFY changed)
    Q_PROPERTY(double lengthFraction READ lengthFraction WRITE setLengthFraction NOTIFY changed)
    Q_PROPERTY(double thickness READ thickness WRITE setThickness NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)

public:
    explicit ClockHand(QQuickItem* parent = nullptr);

    double angle() const { return m_angle; }
    void setAngle(double a);
    double lengthFraction() const { return m_lengthFraction; }
    void setLengthFraction(double f);
    double thickness() const { return m_thickness; }
    void setThickness(double t);
    QColor color() const { return m_color; }
    void setColor(const QColor& c);

    // The tip of a hand of `angle` degrees clockwise from twelve, in a w by h box, y down.
    static QPointF tip(double angle, double lengthFraction, double w, double h);
    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    void set(double& field, double value);

    double m_angle = 0;
    double m_lengthFraction = 1;
    double m_thickness = 1;
    QColor m_color = Qt::white;
};

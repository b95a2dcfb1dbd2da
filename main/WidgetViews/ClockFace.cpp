#include "ClockFace.h"

#include <QPainter>
#include <QPen>
#include <cmath>
#include <numbers>

AnalogClockDial::AnalogClockDial(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &QQuickItem::widthChanged, this, [this] { update(); });
    connect(this, &QQuickItem::heightChanged, this, [this] { update(); });
}

QPainterPath AnalogClockDial::tickPath(double w, double h)
{
    const QPointF c(w * 0.5, h * 0.5);
    const double r = std::min(w, h) * 0.5;
    QPainterPath path;
    for (int i = 0; i < 60; ++i) {
        const double a = i * 6.0 * std::numbers::pi / 180.0;
        const QPointF dir(std::cos(a), std::sin(a));
        const double inner = r * (i % 5 == 0 ? 0.78 : 0.84);
        path.moveTo(c + dir * inner);
        path.lineTo(c + dir * (r * 0.9));
    }
    return path;
}

void AnalogClockDial::paint(QPainter* p)
{
    p->setRenderHint(QPainter::Antialiasing);
    p->strokePath(tickPath(width(), height()), QPen(QColor::fromRgbF(1, 1, 1, 0.18f), 1.5));
}

ClockHand::ClockHand(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &QQuickItem::widthChanged, this, [this] { update(); });
    connect(this, &QQuickItem::heightChanged, this, [this] { update(); });
}

void ClockHand::set(double& field, double value)
{
    // The seconds tick re-assigns every hand; only a real change repaints.
    if (field == value)
        return;
    field = value;
    emit changed();
    update();
}

void ClockHand::setAngle(double a) { set(m_angle, a); }
void ClockHand::setLengthFraction(double f) { set(m_lengthFraction, f); }
void ClockHand::setThickness(double t) { set(m_thickness, t); }

void ClockHand::setColor(const QColor& c)
{
    if (c == m_color)
        return;
    m_color = c;
    emit changed();
    update();
}

QPointF ClockHand::tip(double angle, double lengthFraction, double w, double h)
{
    const QPointF c(w * 0.5, h * 0.5);
    const double length = std::min(w, h) * 0.5 * lengthFraction;
    const double a = (angle - 90.0) * std::numbers::pi / 180.0;
    return QPointF(c.x() + std::cos(a) * length, c.y() + std::sin(a) * length);
}

void ClockHand::paint(QPainter* p)
{
    p->setRenderHint(QPainter::Antialiasing);
    QPen pen(m_color, m_thickness);
    pen.setCapStyle(Qt::RoundCap);
    p->setPen(pen);
    p->drawLine(QPointF(width() * 0.5, height() * 0.5), tip(m_angle, m_lengthFraction, width(), height()));
}

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

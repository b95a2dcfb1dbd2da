#include "BatteryRingArc.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

BatteryRingArc::BatteryRingArc(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    setAcceptedMouseButtons(Qt::NoButton);
}

template <typename T> void BatteryRingArc::set(T& field, const T& value)
{
    if (field != value) {
        field = value;
        update();
    }
    emit changed();
}

void BatteryRingArc::setProgress(qreal p)
{
    set(m_progress, p);
}
void BatteryRingArc::setLineWidth(qreal w)
{
    set(m_lineWidth, std::max<qreal>(0, w));
}
void BatteryRingArc::setColor(const QColor& c)
{
    set(m_color, c);
}
void BatteryRingArc::setTrackColor(const QColor& c)
{
    set(m_trackColor, c);
}

qreal BatteryRingArc::sweepDegrees(qreal progress)
{
    if (!std::isfinite(progress))
        return 0;
    return std::clamp<qreal>(progress, 0, 1) * 360;
}

void BatteryRingArc::paint(QPainter* painter)
{
    const qreal radius = (std::min(width(), height()) - m_lineWidth) / 2;
    if (radius <= 0 || m_lineWidth <= 0)
        return;
    const QRectF circle(width() / 2 - radius, height() / 2 - radius, 2 * radius, 2 * radius);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setBrush(Qt::NoBrush);
    painter->setPen(QPen(m_trackColor, m_lineWidth));
    painter->drawEllipse(circle);

    const qreal sweep = sweepDegrees(m_progress);
    if (sweep <= 0)
        return;
    painter->setPen(QPen(m_color, m_lineWidth, Qt::SolidLine, Qt::RoundCap));
    // Qt counts angles anticlockwise from three o'clock, in sixteenths of a degree.
    painter->drawArc(circle, 90 * 16, -qRound(sweep * 16));
}

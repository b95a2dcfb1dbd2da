#include "DiagonalGradient.h"

#include <QLinearGradient>
#include <QPainter>

DiagonalGradient::DiagonalGradient(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    connect(this, &QQuickItem::widthChanged, this, [this] { update(); });
    connect(this, &QQuickItem::heightChanged, this, [this] { update(); });
}

void DiagonalGradient::setStartColor(const QColor& c)
{
    m_start = c;
    emit changed();
    update();
}

void DiagonalGradient::setEndColor(const QColor& c)
{
    m_end = c;
    emit changed();
    update();
}

void DiagonalGradient::setRadius(double r)
{
    m_radius = r;
    emit changed();
    update();
}

void DiagonalGradient::paint(QPainter* p)
{
    p->setRenderHint(QPainter::Antialiasing);
    const QRectF box(0, 0, width(), height());
    QLinearGradient g(box.topLeft(), box.bottomRight());
    g.setColorAt(0, m_start);
    g.setColorAt(1, m_end);
    p->setPen(Qt::NoPen);
    p->setBrush(g);
    p->drawRoundedRect(box, m_radius, m_radius);
}

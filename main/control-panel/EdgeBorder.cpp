#include "EdgeBorder.h"

#include <QPainter>

EdgeBorder::EdgeBorder(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAcceptedMouseButtons(Qt::NoButton);
    connect(this, &QQuickItem::widthChanged, this, [this] { update(); });
    connect(this, &QQuickItem::heightChanged, this, [this] { update(); });
}

QList<QRectF> EdgeBorder::path(const QRectF& r, double w, Edges edges)
{
    QList<QRectF> out;
    if (edges & Top)
        out.append(QRectF(r.left(), r.top(), r.width(), w));
    if (edges & Leading)
        out.append(QRectF(r.left(), r.top(), w, r.height()));
    if (edges & Bottom)
        out.append(QRectF(r.left(), r.bottom() - w, r.width(), w));
    if (edges & Trailing)
        out.append(QRectF(r.right() - w, r.top(), w, r.height()));
    return out;
}

void EdgeBorder::setBorderWidth(double w)
{
    m_width = w;
    emit changed();
    update();
}

void EdgeBorder::setEdges(Edges e)
{
    m_edges = e;
    emit changed();
    update();
}

void EdgeBorder::setColor(const QColor& c)
{
    m_color = c;
    emit changed();
    update();
}

void EdgeBorder::paint(QPainter* p)
{
    for (const QRectF& r : path(QRectF(0, 0, width(), height()), m_width, m_edges))
        p->fillRect(r, m_color);
}

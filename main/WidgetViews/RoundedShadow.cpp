#include "RoundedShadow.h"

#include <QPainter>
#include <algorithm>
#include <cmath>

RoundedShadow::RoundedShadow(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAcceptedMouseButtons(Qt::NoButton);
    connect(this, &QQuickItem::widthChanged, this, [this] { update(); });
    connect(this, &QQuickItem::heightChanged, this, [this] { update(); });
}

void RoundedShadow::changeAndRepaint()
{
    emit changed();
    update();
}

void RoundedShadow::setColor(const QColor& c)
{
    if (c == m_color)
        return;
    m_color = c;
    changeAndRepaint();
}

void RoundedShadow::setBlur(qreal b)
{
    b = std::max<qreal>(0, b);
    if (b == m_blur)
        return;
    m_blur = b;
    changeAndRepaint();
}

void RoundedShadow::setCornerRadius(qreal r)
{
    r = std::max<qreal>(0, r);
    if (r == m_cornerRadius)
        return;
    m_cornerRadius = r;
    changeAndRepaint();
}

qreal RoundedShadow::distance(QPointF p, QSizeF size, qreal radius)
{
    radius = std::min({radius, size.width() / 2, size.height() / 2});
    // From the centre, folded into one quadrant, against the box of the corners' centres.
    const qreal qx = std::abs(p.x() - size.width() / 2) - (size.width() / 2 - radius);
    const qreal qy = std::abs(p.y() - size.height() / 2) - (size.height() / 2 - radius);
    const qreal outside = std::hypot(std::max<qreal>(qx, 0), std::max<qreal>(qy, 0));
    return outside + std::min<qreal>(std::max(qx, qy), 0) - radius;
}

QImage RoundedShadow::shadowImage(QSizeF shape, qreal radius, qreal blur, const QColor& color)
{
    const QSize size = (shape + QSizeF(2 * blur, 2 * blur)).toSize();
    if (size.isEmpty())
        return {};
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    // A Gaussian of spread blur / 2 across the edge: faded to nearly nothing at the image's border.
    const qreal sigma = std::max<qreal>(blur / 2, 0.5);
    const qreal opacity = color.alphaF();
    for (int y = 0; y < size.height(); ++y) {
        auto* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < size.width(); ++x) {
            const qreal d = distance(QPointF(x + 0.5 - blur, y + 0.5 - blur), shape, radius);
            const qreal a = opacity * 0.5 * std::erfc(d / (sigma * std::sqrt(2.0)));
            QColor c = color;
            c.setAlphaF(float(a));
            line[x] = qPremultiply(c.rgba());
        }
    }
    return image;
}

void RoundedShadow::paint(QPainter* painter)
{
    const QSizeF shape = size() - QSizeF(2 * m_blur, 2 * m_blur);
    if (shape.isEmpty())
        return;
    painter->drawImage(0, 0, shadowImage(shape, m_cornerRadius, m_blur, m_color));
}

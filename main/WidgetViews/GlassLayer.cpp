#include "GlassLayer.h"

#include "ContinuousCorners.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

namespace {
QColor white(double a) { return QColor::fromRgbF(1, 1, 1, float(a)); }
QColor black(double a) { return QColor::fromRgbF(0, 0, 0, float(a)); }
} // namespace

GlassTheme GlassTheme::forName(const QString& theme)
{
    if (theme == "opaque")
        return {13, {white(0.14), white(0.05), black(0.42)}, 0.35};
    return {4, {white(0.08), white(0.02), black(0.16)}, 0.22};
}

GlassLayer::GlassLayer(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    setAcceptedMouseButtons(Qt::NoButton); // never takes part in hit testing
}

void GlassLayer::setKind(Kind k)
{
    m_kind = k;
    emit changed();
    update();
}

void GlassLayer::setTheme(const QString& t)
{
    if (t == m_theme)
        return;
    m_theme = t;
    emit changed();
    update();
}

void GlassLayer::setGlowColor(const QColor& c)
{
    if (c == m_glowColor)
        return;
    m_glowColor = c;
    emit changed();
    update();
}

void GlassLayer::paint(QPainter* p)
{
    p->setRenderHint(QPainter::Antialiasing);
    const QRectF box(0, 0, width(), height());
    const QPainterPath shape = corners::continuousRoundedRect(box, cornerRadius);
    const GlassTheme theme = GlassTheme::forName(m_theme);
    switch (m_kind) {
    case Tint: {
        QLinearGradient g(box.topLeft(), box.bottomRight());
        g.setColorAt(0, theme.tint[0]);
        g.setColorAt(0.5, theme.tint[1]);
        g.setColorAt(1, theme.tint[2]);
        p->fillPath(shape, g);
        break;
    }
    case Sheen: {
        // The sheen is its own half-height box, rounded on all four corners.
        const QRectF half(0, 0, width(), height() * 0.5);
        QLinearGradient g(half.topLeft(), half.bottomLeft());
        g.setColorAt(0, white(0.08));
        g.setColorAt(1, white(0));
        p->fillPath(corners::continuousRoundedRect(half, cornerRadius), g);
        break;
    }
    case Glow: {
        QColor inner = m_glowColor;
        inner.setAlphaF(float(inner.alphaF() * theme.glowOpacity));
        QColor outer = m_glowColor;
        outer.setAlphaF(0);
        QRadialGradient g(QPointF(width() * 0.5, height()), glowRadius);
        g.setColorAt(0, inner);
        g.setColorAt(1, outer);
        p->fillPath(shape, g);
        break;
    }
    case Border: {
        // On the centre line of the edge, as a 1-point hairline.
        p->setPen(QPen(white(0.16), 1.0));
        p->setBrush(Qt::NoBrush);
        p->drawPath(shape);
        break;
    }
    }
}

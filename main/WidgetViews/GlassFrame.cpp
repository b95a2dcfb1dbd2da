#include "GlassFrame.h"

#include "ContinuousCorners.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>

namespace {
QColor white(double a)
{
    return QColor::fromRgbF(1, 1, 1, float(a));
}
QColor black(double a)
{
    return QColor::fromRgbF(0, 0, 0, float(a));
}
} // namespace

GlassTheme GlassTheme::forName(const QString& theme)
{
    if (theme == "opaque")
        return {13, {white(0.14), white(0.05), black(0.42)}, 0.35};
    return {4, {white(0.08), white(0.02), black(0.16)}, 0.22};
}

GlassFrame::GlassFrame(QQuickItem* parent) : VisualEffectView(parent)
{
    setCornerRadius(radius);
    setMaterial(GlassTheme::forName(m_theme).material);
}

void GlassFrame::setTheme(const QString& t)
{
    if (t == m_theme)
        return;
    m_theme = t;
    setMaterial(GlassTheme::forName(t).material);
    emit changed();
}

void GlassFrame::setGlowColor(const QColor& c)
{
    if (c == m_glowColor)
        return;
    m_glowColor = c;
    scheduleRefresh();
    emit changed();
}

void GlassFrame::paintOver(QPainter* p, const QSizeF& size)
{
    const QRectF box(QPointF(0, 0), size);
    const QPainterPath shape = corners::continuousRoundedRect(box, radius);
    const GlassTheme theme = GlassTheme::forName(m_theme);

    QLinearGradient tint(box.topLeft(), box.bottomRight());
    tint.setColorAt(0, theme.tint[0]);
    tint.setColorAt(0.5, theme.tint[1]);
    tint.setColorAt(1, theme.tint[2]);
    p->fillPath(shape, tint);

    // The sheen is its own half-height box, rounded on all four corners.
    const QRectF half(0, 0, size.width(), size.height() * 0.5);
    QLinearGradient sheen(half.topLeft(), half.bottomLeft());
    sheen.setColorAt(0, white(0.08));
    sheen.setColorAt(1, white(0));
    p->fillPath(corners::continuousRoundedRect(half, radius), sheen);

    if (glowing()) {
        QColor inner = m_glowColor;
        inner.setAlphaF(float(inner.alphaF() * theme.glowOpacity));
        QColor outer = m_glowColor;
        outer.setAlphaF(0);
        QRadialGradient glow(QPointF(size.width() * 0.5, size.height()), glowRadius);
        glow.setColorAt(0, inner);
        glow.setColorAt(1, outer);
        p->fillPath(shape, glow);
    }

    // On the centre line of the edge, as a 1-point hairline.
    p->setPen(QPen(white(0.16), 1.0));
    p->setBrush(Qt::NoBrush);
    p->drawPath(shape);
}

#include "VisualEffectView.h"

#include "ContinuousCorners.h"

#include <QPainter>

VisualEffectView::VisualEffectView(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
}

QColor VisualEffectView::materialColor(int material)
{
    if (material == HudWindow)
        return QColor(22, 22, 26, 190);
    return QColor(70, 82, 104, 92);
}

void VisualEffectView::setMaterial(int m)
{
    m_material = m;
    emit materialChanged();
    update();
}

void VisualEffectView::setBlendingMode(int m)
{
    m_blendingMode = m;
    emit blendingModeChanged();
}

void VisualEffectView::setState(int s)
{
    m_state = s;
    emit stateChanged();
    update();
}

void VisualEffectView::setCornerRadius(double r)
{
    m_cornerRadius = r;
    emit cornerRadiusChanged();
    update();
}

void VisualEffectView::paint(QPainter* painter)
{
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(Qt::NoPen);
    painter->setBrush(materialColor(m_material));
    const QRectF r(0, 0, width(), height());
    if (m_cornerRadius > 0)
        painter->drawPath(corners::continuousRoundedRect(r, m_cornerRadius));
    else
        painter->fillRect(r, materialColor(m_material));
}

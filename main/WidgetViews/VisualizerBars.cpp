#include "VisualizerBars.h"

#include <QPainter>

VisualizerBars::VisualizerBars(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
    const int n = MusicVisualizerModel::barCount;
    setImplicitSize(n * barWidth + (n - 1) * spacing, MusicVisualizerModel::maxHeight);
}

void VisualizerBars::setModel(MusicVisualizerModel* model)
{
    if (model == m_model)
        return;
    disconnect(m_heights);
    m_model = model;
    if (model)
        m_heights = connect(model, &MusicVisualizerModel::heightsChanged, this, [this] { update(); });
    emit changed();
    update();
}

void VisualizerBars::setColor(const QColor& color)
{
    if (color == m_color)
        return;
    m_color = color;
    emit changed();
    update();
}

void VisualizerBars::paint(QPainter* p)
{
    if (!m_model)
        return;
    p->setRenderHint(QPainter::Antialiasing);
    p->setPen(Qt::NoPen);
    p->setBrush(m_color);
    const QList<qreal> heights = m_model->heights();
    // Bottom-aligned on the item's lower edge.
    for (int i = 0; i < heights.size(); ++i)
        p->drawRoundedRect(QRectF(i * (barWidth + spacing), height() - heights[i], barWidth, heights[i]), radius, radius);
}

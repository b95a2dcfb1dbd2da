#include "VisualizerBars.h"

#include <QPainter>
#include <QQuickWindow>
#include <QSGImageNode>
#include <cmath>

namespace {

constexpr int stepCount =
    int((MusicVisualizerModel::maxHeight - MusicVisualizerModel::minHeight) * VisualizerBars::stepsPerPoint) + 1;

// Holds the bars' images for one colour; the scene graph deletes it, and them, with the item.
struct BarsNode : QSGNode {
    ~BarsNode() override { qDeleteAll(textures); }
    void clear()
    {
        qDeleteAll(textures);
        textures.fill(nullptr);
    }
    std::array<QSGTexture*, stepCount> textures{};
    QColor color;
    qreal dpr = 0;
};

} // namespace

VisualizerBars::VisualizerBars(QQuickItem* parent) : QQuickItem(parent)
{
    setFlag(ItemHasContents);
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
        m_heights = connect(model, &MusicVisualizerModel::heightsChanged, this, &QQuickItem::update);
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

QImage VisualizerBars::barImage(qreal height, const QColor& color, qreal dpr)
{
    const qreal box = MusicVisualizerModel::maxHeight;
    QImage image(int(std::ceil(barWidth * dpr)), int(std::ceil(box * dpr)), QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter p(&image);
    p.setRenderHint(QPainter::Antialiasing);
    p.scale(dpr, dpr);
    p.setPen(Qt::NoPen);
    p.setBrush(color);
    p.drawRoundedRect(QRectF(0, box - height, barWidth, height), radius, radius);
    p.end();
    return image;
}

QSGNode* VisualizerBars::updatePaintNode(QSGNode* old, UpdatePaintNodeData*)
{
    if (!m_model) {
        delete old;
        return nullptr;
    }
    auto* node = static_cast<BarsNode*>(old);
    const qreal dpr = window()->effectiveDevicePixelRatio();
    if (!node) {
        node = new BarsNode;
        for (int i = 0; i < MusicVisualizerModel::barCount; ++i)
            node->appendChildNode(window()->createImageNode());
    }
    if (node->color != m_color || node->dpr != dpr) {
        node->clear();
        node->color = m_color;
        node->dpr = dpr;
    }
    const QList<qreal> heights = m_model->heights();
    const qreal pixelWidth = std::ceil(barWidth * dpr) / dpr;
    int i = 0;
    for (QSGNode* child = node->firstChild(); child; child = child->nextSibling(), ++i) {
        const qreal h = i < heights.size() ? heights[i] : MusicVisualizerModel::minHeight;
        const int step =
            std::clamp(int(std::lround((h - MusicVisualizerModel::minHeight) * stepsPerPoint)), 0, stepCount - 1);
        QSGTexture*& texture = node->textures[size_t(step)];
        if (!texture)
            texture = window()->createTextureFromImage(
                barImage(MusicVisualizerModel::minHeight + qreal(step) / stepsPerPoint, m_color, dpr));
        // A node left as it was adds nothing to the frame's dirty region.
        auto* image = static_cast<QSGImageNode*>(child);
        if (image->texture() != texture)
            image->setTexture(texture);
        const QRectF rect(i * (barWidth + spacing), height() - MusicVisualizerModel::maxHeight, pixelWidth,
                          MusicVisualizerModel::maxHeight);
        if (image->rect() != rect)
            image->setRect(rect);
    }
    return node;
}

#include "ArtworkImage.h"

#include <QPainter>
#include <QPainterPath>

ArtworkImage::ArtworkImage(QQuickItem* parent) : QQuickPaintedItem(parent)
{
    setAntialiasing(true);
}

QRectF ArtworkImage::fillSource(const QSizeF& imageSize, const QSizeF& frame)
{
    if (imageSize.isEmpty() || frame.isEmpty())
        return {};
    const qreal scale = std::max(frame.width() / imageSize.width(), frame.height() / imageSize.height());
    const QSizeF piece(frame.width() / scale, frame.height() / scale);
    return QRectF(QPointF((imageSize.width() - piece.width()) / 2, (imageSize.height() - piece.height()) / 2), piece);
}

void ArtworkImage::setImage(const QImage& image)
{
    m_image = image;
    emit imageChanged();
    update();
}

void ArtworkImage::setRadius(qreal radius)
{
    m_radius = radius;
    emit radiusChanged();
    update();
}

void ArtworkImage::paint(QPainter* painter)
{
    const QRectF frame = boundingRect();
    const QRectF source = fillSource(m_image.size(), frame.size());
    if (source.isEmpty())
        return;
    QPainterPath clip;
    clip.addRoundedRect(frame, m_radius, m_radius);
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    painter->setClipPath(clip);
    painter->drawImage(frame, m_image, source);
}

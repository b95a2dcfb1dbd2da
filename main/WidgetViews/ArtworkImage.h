#pragma once
// The artwork picture, scaled to fill its frame with the aspect ratio kept (the overflow cropped
// evenly) and clipped to a rounded rectangle. Painted, as the software scene graph needs no shader.
#include <QImage>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class ArtworkImage : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QImage image READ image WRITE setImage NOTIFY imageChanged)
    Q_PROPERTY(qreal radius READ radius WRITE setRadius NOTIFY radiusChanged)

  public:
    explicit ArtworkImage(QQuickItem* parent = nullptr);

    // The part of an image of `imageSize` that fills `frame`: the largest centred piece of the
    // frame's aspect ratio.
    static QRectF fillSource(const QSizeF& imageSize, const QSizeF& frame);

    QImage image() const { return m_image; }
    void setImage(const QImage& image);
    qreal radius() const { return m_radius; }
    void setRadius(qreal radius);

    void paint(QPainter* painter) override;

  signals:
    void imageChanged();
    void radiusChanged();

  private:
    QImage m_image;
    qreal m_radius = 0;
};

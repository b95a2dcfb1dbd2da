#pragma once
// The soft shadow of a rounded rectangle, worked out once per size from the distance to the shape
// (a Gaussian edge) and kept as a texture: no scene-graph effect, which the software backend lacks.
// The item reaches `blur` beyond the shape on every side; the shape sits at (blur, blur).
#include <QColor>
#include <QImage>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class RoundedShadow : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    // Its alpha is the shadow's opacity under the shape.
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)
    Q_PROPERTY(qreal blur READ blur WRITE setBlur NOTIFY changed)
    Q_PROPERTY(qreal cornerRadius READ cornerRadius WRITE setCornerRadius NOTIFY changed)

  public:
    explicit RoundedShadow(QQuickItem* parent = nullptr);

    QColor color() const { return m_color; }
    void setColor(const QColor& c);
    qreal blur() const { return m_blur; }
    void setBlur(qreal b);
    qreal cornerRadius() const { return m_cornerRadius; }
    void setCornerRadius(qreal r);

    // Signed distance from `p` to a rectangle of `size` at the origin with corners of `radius`:
    // negative inside.
    static qreal distance(QPointF p, QSizeF size, qreal radius);
    // The shadow of a `shape`-sized rounded rectangle in an image `blur` larger on every side.
    static QImage shadowImage(QSizeF shape, qreal radius, qreal blur, const QColor& color);

    void paint(QPainter* painter) override;

  signals:
    void changed();

  private:
    void changeAndRepaint();

    QColor m_color = QColor(0, 0, 0, 115);
    qreal m_blur = 10;
    qreal m_cornerRadius = 0;
};

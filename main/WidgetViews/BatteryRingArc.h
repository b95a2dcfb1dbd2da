#pragma once
// One battery ring: a faint full track and, over it, the charged part as an arc from twelve o'clock
// clockwise with round caps. The circle's radius is half the item's side less half the line, so an
// item one line wider than the ring's frame draws the stroke centred on the frame's circle.
#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class BatteryRingArc : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    // 0 draws only the track, 1 closes the circle; the view animates it.
    Q_PROPERTY(qreal progress READ progress WRITE setProgress NOTIFY changed)
    Q_PROPERTY(qreal lineWidth READ lineWidth WRITE setLineWidth NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)
    Q_PROPERTY(QColor trackColor READ trackColor WRITE setTrackColor NOTIFY changed)

  public:
    explicit BatteryRingArc(QQuickItem* parent = nullptr);

    qreal progress() const { return m_progress; }
    void setProgress(qreal p);
    qreal lineWidth() const { return m_lineWidth; }
    void setLineWidth(qreal w);
    QColor color() const { return m_color; }
    void setColor(const QColor& c);
    QColor trackColor() const { return m_trackColor; }
    void setTrackColor(const QColor& c);

    // The arc's span in degrees: progress within 0..1, so a reading of 999 % still draws one circle.
    static qreal sweepDegrees(qreal progress);
    void paint(QPainter* painter) override;

  signals:
    void changed();

  private:
    template <typename T> void set(T& field, const T& value);

    qreal m_progress = 0;
    qreal m_lineWidth = 5;
    QColor m_color = Qt::green;
    QColor m_trackColor = QColor::fromRgbF(1, 1, 1, 0.08f);
};

#pragma once
// A rounded rectangle filled with a linear gradient from its top-leading to its bottom-trailing
// corner (Qt Quick's own Rectangle only runs gradients along one axis).
#include <QColor>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class DiagonalGradient : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(QColor startColor READ startColor WRITE setStartColor NOTIFY changed)
    Q_PROPERTY(QColor endColor READ endColor WRITE setEndColor NOTIFY changed)
    Q_PROPERTY(double radius READ radius WRITE setRadius NOTIFY changed)

  public:
    explicit DiagonalGradient(QQuickItem* parent = nullptr);

    QColor startColor() const { return m_start; }
    void setStartColor(const QColor& c);
    QColor endColor() const { return m_end; }
    void setEndColor(const QColor& c);
    double radius() const { return m_radius; }
    void setRadius(double r);

    void paint(QPainter* painter) override;

  signals:
    void changed();

  private:
    QColor m_start = Qt::white;
    QColor m_end = Qt::black;
    double m_radius = 0;
};

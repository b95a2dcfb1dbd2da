#pragma once
// A hairline along chosen edges of an item, laid over it.
#include <QColor>
#include <QList>
#include <QQuickPaintedItem>
#include <QRectF>
#include <QtQml/qqmlregistration.h>

class EdgeBorder : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(double borderWidth READ borderWidth WRITE setBorderWidth NOTIFY changed)
    Q_PROPERTY(Edges edges READ edges WRITE setEdges NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)

  public:
    enum Edge { Top = 1, Leading = 2, Bottom = 4, Trailing = 8 };
    Q_DECLARE_FLAGS(Edges, Edge)
    Q_FLAG(Edges)

    explicit EdgeBorder(QQuickItem* parent = nullptr);

    // One rectangle per edge, in the order top, leading, bottom, trailing of the flags given.
    static QList<QRectF> path(const QRectF& rect, double width, Edges edges);

    double borderWidth() const { return m_width; }
    void setBorderWidth(double w);
    Edges edges() const { return m_edges; }
    void setEdges(Edges e);
    QColor color() const { return m_color; }
    void setColor(const QColor& c);

    void paint(QPainter* painter) override;

  signals:
    void changed();

  private:
    double m_width = 1;
    Edges m_edges = Top;
    QColor m_color = QColor::fromRgbF(1, 1, 1, 0.08f);
};
Q_DECLARE_OPERATORS_FOR_FLAGS(EdgeBorder::Edges)

#pragma once
// The visualizer's four bars as one small painted item: a frame repaints 25 by 20 pixels and
// evaluates no binding, where four rectangles would each be re-laid out and re-rasterised.
#include "MusicVisualizerModel.h"

#include <QColor>
#include <QPointer>
#include <QQuickPaintedItem>
#include <QtQml/qqmlregistration.h>

class VisualizerBars : public QQuickPaintedItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(MusicVisualizerModel* model READ model WRITE setModel NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)

public:
    static constexpr qreal barWidth = 3.5;
    static constexpr qreal spacing = 3.5;
    static constexpr qreal radius = 2;

    explicit VisualizerBars(QQuickItem* parent = nullptr);

    MusicVisualizerModel* model() const { return m_model; }
    void setModel(MusicVisualizerModel* model);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);

    void paint(QPainter* painter) override;

signals:
    void changed();

private:
    QPointer<MusicVisualizerModel> m_model;
    QMetaObject::Connection m_heights;
    QColor m_color = Qt::white;
};

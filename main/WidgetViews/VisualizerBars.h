#pragma once
// The visualizer's four bars as one small item: each frame only picks, for every bar, a ready-made
// image of its height (in quarter points), so a frame neither rasterises nor evaluates a binding.
#include "MusicVisualizerModel.h"

#include <QColor>
#include <QPointer>
#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class VisualizerBars : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    Q_PROPERTY(MusicVisualizerModel* model READ model WRITE setModel NOTIFY changed)
    Q_PROPERTY(QColor color READ color WRITE setColor NOTIFY changed)

  public:
    static constexpr qreal barWidth = 3.5;
    static constexpr qreal spacing = 3.5;
    static constexpr qreal radius = 2;
    static constexpr int stepsPerPoint = 4;

    explicit VisualizerBars(QQuickItem* parent = nullptr);

    MusicVisualizerModel* model() const { return m_model; }
    void setModel(MusicVisualizerModel* model);
    QColor color() const { return m_color; }
    void setColor(const QColor& color);

    // One bar of the given height standing on the bottom of a barWidth by maxHeight box.
    static QImage barImage(qreal height, const QColor& color, qreal dpr);

  signals:
    void changed();

  protected:
    QSGNode* updatePaintNode(QSGNode* node, UpdatePaintNodeData*) override;

  private:
    QPointer<MusicVisualizerModel> m_model;
    QMetaObject::Connection m_heights;
    QColor m_color = Qt::white;
};

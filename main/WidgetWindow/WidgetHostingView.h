#pragma once
// The window's content: hosts the widget's view tree and fills the frame it is given.
#include "Geometry.h"

#include <QQuickItem>
#include <QtQml/qqmlregistration.h>

class WidgetHostingView : public QQuickItem {
    Q_OBJECT
    QML_ELEMENT
    QML_UNCREATABLE("made by the widget registry")

  public:
    // Takes ownership of `rootView` (may be null for a view that failed to load).
    explicit WidgetHostingView(QQuickItem* rootView = nullptr);

    void setFrame(const Rect& frame);
    Rect frame() const;
    QQuickItem* rootView() const { return m_rootView; }

  protected:
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;

  private:
    QQuickItem* m_rootView = nullptr;
};

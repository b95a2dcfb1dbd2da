#include "WidgetHostingView.h"

#include "WindowLog.h"

WidgetHostingView::WidgetHostingView(QQuickItem* rootView) : m_rootView(rootView)
{
    if (m_rootView) {
        // The QObject parent, not only the visual one: the view tree, its models, timers and
        // requests go with the window when a widget is switched off.
        m_rootView->setParent(this);
        m_rootView->setParentItem(this);
    } else {
        qCWarning(lcWindow) << "a widget window with no view: it shows empty glass";
    }
}

void WidgetHostingView::setFrame(const Rect& frame)
{
    // Inside the window the hosting view's frame is in the window's own item coordinates.
    setPosition(QPointF(frame.x, frame.y));
    setSize(QSizeF(frame.width, frame.height));
}

Rect WidgetHostingView::frame() const
{
    return Rect{x(), y(), width(), height()};
}

void WidgetHostingView::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (m_rootView)
        m_rootView->setSize(newGeometry.size());
}

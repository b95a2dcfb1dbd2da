#pragma once
// A borderless, non-activating, transparent window below ordinary windows, on every workspace,
// dragged by any press on its surface unless it is click-through.
#include "Geometry.h"

#include <QQuickWindow>
#include <QTimer>

class WidgetHostingView;

class WidgetWindow : public QQuickWindow {
    Q_OBJECT

public:
    static constexpr double cornerRadius = 28.0;

    WidgetWindow(const QString& name, WidgetHostingView* contentView, const Rect& initialFrame,
                 bool isClickThrough);
    ~WidgetWindow() override;

    QString widgetName() const { return m_widgetName; }
    WidgetHostingView* contentView() const { return m_contentView; }

    void setClickThrough(bool enabled);
    // The two always change together: a click-through window is never moved by its background.
    bool ignoresMouseEvents() const { return flags().testFlag(Qt::WindowTransparentForInput); }
    bool isMovableByWindowBackground() const { return !ignoresMouseEvents(); }
    bool canBecomeKey() const { return false; }
    bool canBecomeMain() const { return false; }

    // Frame in app coordinates; setFrame moves and resizes at once, with no animation.
    Rect frame() const;
    void setFrame(const Rect& frame);

    void orderFront();

signals:
    // A move has come to rest: for a user drag, once the button is up; otherwise at once.
    void didMove(WidgetWindow* window);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void moveEvent(QMoveEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    void settleMove();
    void updateMask();

    QString m_widgetName;
    WidgetHostingView* m_contentView = nullptr;
    QTimer m_dragPoll;
    bool m_dragArmed = false;
    QPointF m_pressPosition;
    bool m_ownDrag = false;
    QPointF m_dragOffset;
};

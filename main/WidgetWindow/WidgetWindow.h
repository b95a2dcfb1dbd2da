#pragma once
// A borderless, non-activating, transparent window below ordinary windows, on every workspace,
// dragged by any press on its surface unless it is click-through.
#include "Geometry.h"

#include <QElapsedTimer>
#include <QList>
#include <QQuickWindow>
#include <QTimer>
#include <QVariantAnimation>
#include <optional>

class WidgetHostingView;

class WidgetWindow : public QQuickWindow {
    Q_OBJECT

  public:
    static constexpr double cornerRadius = 28.0;

    WidgetWindow(const QString& name, WidgetHostingView* contentView, const Rect& initialFrame, bool isClickThrough);
    ~WidgetWindow() override;

    WidgetHostingView* contentView() const { return m_contentView; }

    void setClickThrough(bool enabled);
    // The two always change together: a click-through window is never moved by its background.
    bool ignoresMouseEvents() const { return flags().testFlag(Qt::WindowTransparentForInput); }
    bool isMovableByWindowBackground() const { return !ignoresMouseEvents(); }

    // Frame in app coordinates: the one last set, while the window system has yet to confirm it.
    // setFrame moves and resizes at once or in a short animation. As on the original platform, the
    // move notification of the program's own change comes during the call; the window system's
    // later reports of it (and of each animation step) are recognised and dropped.
    Rect frame() const;
    void setFrame(const Rect& frame, bool animate = false);

    // The compositor's drop shadow; asked for at creation.
    void setHasShadow(bool enabled);

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
    void exposeEvent(QExposeEvent* event) override;

  private:
    void settleMove();
    void requestGeometry(const QRect& geometry);
    void fixSize(const QSize& size);
    bool isOwnMove(const QPoint& position);
    void deliverMove();
    void updateMask();

    WidgetHostingView* m_contentView = nullptr;
    QTimer m_dragPoll;
    bool m_dragArmed = false;
    QPointF m_pressPosition;
    // Positions this window asked for whose report hasn't come back yet, with when they were asked.
    QList<std::pair<QPoint, qint64>> m_ownMoves;
    QElapsedTimer m_clock;
    qint64 m_lastMoveAt = 0; // on m_clock
    Rect m_frame;
    // Where the last notification found the window: a report of that same place again is no move.
    std::optional<QPoint> m_lastDelivered;
    QVariantAnimation m_frameAnimation;
    // Until first shown, moves are the window manager's placement, which no one asked to store.
    bool m_placed = false;
    bool m_ownDrag = false;
    QPointF m_dragOffset;
};

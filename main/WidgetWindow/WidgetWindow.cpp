#include "WidgetWindow.h"

#include "ContinuousCorners.h"
#include "RootBackground.h"
#include "Screen.h"
#include "WidgetHostingView.h"
#include "X11Window.h"

#include <QMouseEvent>
#include <QSurfaceFormat>

WidgetWindow::WidgetWindow(const QString& name, WidgetHostingView* contentView, const Rect& initialFrame,
                           bool isClickThrough)
    : m_widgetName(name), m_contentView(contentView)
{
    setFlags(Qt::FramelessWindowHint | Qt::Tool | Qt::WindowStaysOnBottomHint | Qt::WindowDoesNotAcceptFocus |
             Qt::NoDropShadowWindowHint);
    QSurfaceFormat fmt = format();
    fmt.setAlphaBufferSize(8);
    setFormat(fmt);
    setColor(Qt::transparent);
    setTitle("OmbrixWidget " + name);
    setGeometry(screen::toQt(initialFrame, screen::primaryHeight()));
    if (m_contentView) {
        m_contentView->setParentItem(contentItem());
        m_contentView->setParent(this);
    }
    setClickThrough(isClickThrough);
    create();
    x11::applyWidgetHints(this);
    updateMask();
    connect(&RootBackground::shared(), &RootBackground::backgroundChanged, this, &WidgetWindow::updateMask);
    connect(&RootBackground::shared(), &RootBackground::compositingChanged, this, &WidgetWindow::updateMask);

    // While the window manager drags the window, moves are not reported until the button is up,
    // so snapping never fights the user's hand.
    m_dragPoll.setInterval(40);
    connect(&m_dragPoll, &QTimer::timeout, this, &WidgetWindow::settleMove);
}

WidgetWindow::~WidgetWindow() = default;

void WidgetWindow::setClickThrough(bool enabled)
{
    setFlag(Qt::WindowTransparentForInput, enabled);
}

Rect WidgetWindow::frame() const { return screen::fromQt(geometry(), screen::primaryHeight()); }

void WidgetWindow::setFrame(const Rect& frame) { setGeometry(screen::toQt(frame, screen::primaryHeight())); }

void WidgetWindow::orderFront()
{
    showNormal();
    // Shown without taking focus: the window never becomes key.
}

void WidgetWindow::mousePressEvent(QMouseEvent* event)
{
    // Controls in the view (the music transport buttons) take their presses first; a press that
    // no item grabs moves the window, carried out by the window manager.
    QQuickWindow::mousePressEvent(event);
    const bool taken = event->points().size() == 1 && event->exclusiveGrabber(event->points().first());
    m_dragArmed = false;
    if (taken || !isMovableByWindowBackground() || event->button() != Qt::LeftButton)
        return;
    event->accept();
    m_dragArmed = true;
    m_pressPosition = event->globalPosition();
}

void WidgetWindow::mouseMoveEvent(QMouseEvent* event)
{
    QQuickWindow::mouseMoveEvent(event);
    // The move is handed to the window manager only once the pointer really travels: a plain
    // click must never leave it waiting for a release that has already happened.
    if (!m_dragArmed || !(event->buttons() & Qt::LeftButton))
        return;
    // A few pixels: the window trails the pointer by this much once the manager has it.
    constexpr double dragStart = 3;
    if ((event->globalPosition() - m_pressPosition).manhattanLength() < dragStart)
        return;
    m_dragArmed = false;
    startSystemMove();
}

void WidgetWindow::mouseReleaseEvent(QMouseEvent* event)
{
    m_dragArmed = false;
    QQuickWindow::mouseReleaseEvent(event);
}

void WidgetWindow::moveEvent(QMoveEvent* event)
{
    QQuickWindow::moveEvent(event);
    if (x11::isLeftButtonDown()) {
        if (!m_dragPoll.isActive())
            m_dragPoll.start();
        return;
    }
    m_dragPoll.stop();
    emit didMove(this);
}

void WidgetWindow::settleMove()
{
    if (x11::isLeftButtonDown())
        return;
    m_dragPoll.stop();
    emit didMove(this);
}

void WidgetWindow::resizeEvent(QResizeEvent* event)
{
    QQuickWindow::resizeEvent(event);
    updateMask();
}

void WidgetWindow::updateMask()
{
    // The glass paints the wallpaper into its own corners without a compositor, and leaves them
    // clear with one. The corners are cut away only where there is no wallpaper to paint, or where
    // the compositor's blur behind the window must keep to the rounded shape.
    const auto& background = RootBackground::shared();
    const bool cut = background.compositing() ? background.compositorBlursBehind() : !background.available();
    setMask(cut ? corners::continuousRoundedRegion(QRect(QPoint(0, 0), size()), cornerRadius) : QRegion());
}

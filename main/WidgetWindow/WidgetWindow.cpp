#include "WidgetWindow.h"

#include "ContinuousCorners.h"
#include "RootBackground.h"
#include "Screen.h"
#include "ShowingDesktop.h"
#include "WidgetHostingView.h"
#include "WindowLog.h"
#include "X11Window.h"

#include <QMouseEvent>
#include <QSurfaceFormat>

Q_LOGGING_CATEGORY(lcWindow, "ombrix.window", QtWarningMsg)

WidgetWindow::WidgetWindow(const QString& name, WidgetHostingView* contentView, const Rect& initialFrame,
                           bool isClickThrough)
    : m_contentView(contentView), m_frame(initialFrame)
{
    // A plain window, not a tool: Qt makes tools transient for the app's group, and xfwm4 then
    // raises them with the group on a click.
    setFlags(Qt::FramelessWindowHint | Qt::Window | Qt::WindowStaysOnBottomHint | Qt::WindowDoesNotAcceptFocus);
    QSurfaceFormat fmt = format();
    fmt.setAlphaBufferSize(8);
    setFormat(fmt);
    setColor(Qt::transparent);
    setHasShadow(true);
    setTitle("OmbrixWidget " + name);
    const QRect geometry = screen::toQt(initialFrame, screen::primaryHeight());
    fixSize(geometry.size());
    setGeometry(geometry);
    if (m_contentView) {
        m_contentView->setParentItem(contentItem());
        m_contentView->setParent(this);
    }
    // Under a manager that floats every window it manages above the tiled ones, or whose frames
    // catch the clicks a widget lets through, the widget is left unmanaged and moves and stays
    // below by itself.
    if (x11::windowManagerTilesEverything() || (isClickThrough && x11::windowManagerFramesCatchClicks()))
        setFlag(Qt::X11BypassWindowManagerHint);
    setClickThrough(isClickThrough);
    // A widget is part of the desktop: a manager that hides every ordinary window to show the
    // desktop (openbox) is asked for the widget back, and the user's windows stay out of the way.
    // fluxbox minimizes every window instead: a widget, which has no way to be minimized, comes back.
    connect(this, &QWindow::windowStateChanged, this, [this](Qt::WindowState state) {
        if (state == Qt::WindowMinimized)
            QTimer::singleShot(0, this, &QWindow::showNormal);
    });
    // The manager may hide windows before or after it says so: the widget looks a moment later.
    connect(&ShowingDesktop::shared(), &ShowingDesktop::desktopShown, this, [this] {
        QTimer::singleShot(100, this, [this] {
            if (isVisible() && !x11::isViewable(this))
                x11::askToShow(this);
        });
    });
    create();
    x11::applyWidgetHints(this);
    updateMask();
    connect(&RootBackground::shared(), &RootBackground::backgroundChanged, this, &WidgetWindow::updateMask);
    connect(&RootBackground::shared(), &RootBackground::compositingChanged, this, &WidgetWindow::updateMask);

    // While the window manager drags the window, moves are not reported until the button is up,
    // so snapping never fights the user's hand.
    m_dragPoll.setInterval(40);
    connect(&m_dragPoll, &QTimer::timeout, this, &WidgetWindow::settleMove);

    m_clock.start();
    // As short as the original platform's animated frame change of a widget's size.
    m_frameAnimation.setDuration(150);
    m_frameAnimation.setEasingCurve(QEasingCurve::InOutQuad);
    connect(&m_frameAnimation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant& value) { requestGeometry(value.toRect()); });
}

WidgetWindow::~WidgetWindow() = default;

void WidgetWindow::setClickThrough(bool enabled)
{
    setFlag(Qt::WindowTransparentForInput, enabled);
}

void WidgetWindow::setHasShadow(bool enabled)
{
    setFlag(Qt::NoDropShadowWindowHint, !enabled);
}

Rect WidgetWindow::frame() const
{
    return m_frame;
}

void WidgetWindow::setFrame(const Rect& frame, bool animate)
{
    const Rect before = m_frame;
    const QRect target = screen::toQt(frame, screen::primaryHeight());
    m_frameAnimation.stop();
    m_frame = frame;
    if (animate && frame != before) {
        m_frameAnimation.setStartValue(screen::toQt(before, screen::primaryHeight()));
        m_frameAnimation.setEndValue(target);
        m_frameAnimation.start();
    } else {
        requestGeometry(target);
    }
    // The notification of a change the program makes comes during the call, before the caller's
    // next step: snapping drops it as its own, and a resize stores its origin after it.
    if (frame.x != before.x || frame.y != before.y)
        emit didMove(this);
}

void WidgetWindow::fixSize(const QSize& size)
{
    // A widget is as large as its size says: equal bounds tell the manager to offer no resize and
    // no maximize. Widened before a growth and narrowed after a shrink, they never fight the size.
    if (size.width() > maximumWidth() || size.height() > maximumHeight())
        setMaximumSize(size);
    setMinimumSize(size);
    setMaximumSize(size);
}

void WidgetWindow::requestGeometry(const QRect& geometry)
{
    m_ownMoves.append({geometry.topLeft(), m_clock.elapsed()});
    fixSize(geometry.size());
    setGeometry(geometry);
}

bool WidgetWindow::isOwnMove(const QPoint& position)
{
    // A report that never comes (the window manager merged or changed it) stops counting after a while.
    constexpr qint64 forgetAfterMs = 3000;
    const qint64 now = m_clock.elapsed();
    while (!m_ownMoves.isEmpty() && now - m_ownMoves.first().second > forgetAfterMs)
        m_ownMoves.removeFirst();
    // Reports come in the order of the requests: the first match is this one, and those before it
    // will not come any more. A pixel apart still matches: on a scaled screen the way to device
    // pixels and back may round differently.
    for (qsizetype i = 0; i < m_ownMoves.size(); ++i)
        if ((m_ownMoves[i].first - position).manhattanLength() <= 1) {
            m_ownMoves.remove(0, i + 1);
            return true;
        }
    return false;
}

void WidgetWindow::orderFront()
{
    showNormal();
    // Shown without taking focus: the window never becomes key.
    x11::showOnAllDesktops(this);
    if (flags().testFlag(Qt::X11BypassWindowManagerHint))
        x11::lowerWindow(this);
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
    if (m_ownDrag && (event->buttons() & Qt::LeftButton)) {
        setPosition((event->globalPosition() - m_dragOffset).toPoint());
        return;
    }
    // The move is handed to the window manager only once the pointer really travels: a plain
    // click must never leave it waiting for a release that has already happened.
    if (!m_dragArmed || !(event->buttons() & Qt::LeftButton))
        return;
    // A few pixels: the window trails the pointer by this much once the manager has it.
    constexpr double dragStart = 3;
    if ((event->globalPosition() - m_pressPosition).manhattanLength() < dragStart)
        return;
    if (flags().testFlag(Qt::X11BypassWindowManagerHint)) {
        // No manager to hand the move to: the window follows the pointer itself.
        m_dragOffset = m_pressPosition - QPointF(position());
        m_ownDrag = true;
    } else {
        startSystemMove();
    }
    m_dragArmed = false;
}

void WidgetWindow::mouseReleaseEvent(QMouseEvent* event)
{
    m_dragArmed = false;
    m_ownDrag = false;
    QQuickWindow::mouseReleaseEvent(event);
}

void WidgetWindow::moveEvent(QMoveEvent* event)
{
    QQuickWindow::moveEvent(event);
    if (isOwnMove(event->pos())) {
        m_lastDelivered.reset();
        return;
    }
    if (m_frameAnimation.state() == QAbstractAnimation::Running)
        return;
    m_frame = screen::fromQt(QRect(event->pos(), size()), screen::primaryHeight());
    // The window manager's placement at creation (pulling a window back on screen, say) is no move.
    if (!m_placed) {
        m_lastDelivered = event->pos();
        return;
    }
    m_lastMoveAt = m_clock.elapsed();
    if (x11::isLeftButtonDown()) {
        if (!m_dragPoll.isActive())
            m_dragPoll.start();
        return;
    }
    m_dragPoll.stop();
    deliverMove();
}

void WidgetWindow::settleMove()
{
    // Under XWayland the button stays down after the compositor's move: there, a window at rest
    // for a moment has been let go.
    constexpr qint64 restMs = 400;
    const bool atRest = x11::isXWayland() && m_clock.elapsed() - m_lastMoveAt >= restMs;
    if (x11::isLeftButtonDown() && !atRest)
        return;
    m_dragPoll.stop();
    deliverMove();
}

void WidgetWindow::deliverMove()
{
    // Back at the place the last notification reported, with only this window's own requests in
    // between that the window manager answered differently: nothing moved, and answering again
    // would only ask for the same refused place.
    const QPoint origin = screen::toQt(m_frame, screen::primaryHeight()).topLeft();
    if (m_lastDelivered == origin)
        return;
    m_lastDelivered = origin;
    emit didMove(this);
}

void WidgetWindow::exposeEvent(QExposeEvent* event)
{
    QQuickWindow::exposeEvent(event);
    if (!isExposed() || m_placed)
        return;
    m_placed = true;
    // A manager that learns a window's input shape only from changes to it (openbox) keeps a full
    // input rectangle on the frame of a window that was click-through before it was mapped: the
    // shape is set again once the window is on screen.
    if (flags() & Qt::WindowTransparentForInput) {
        setClickThrough(false);
        setClickThrough(true);
    }
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

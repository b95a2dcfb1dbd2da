// The tray item and the Control Panel window.
#include "AppDelegate.h"

#include "AppIcon.h"
#include "AppLog.h"
#include "ControlPanelModel.h"
#include "Memory.h"
#include "Screen.h"

#include <QGuiApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QMenu>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>
#include <QQuickWindow>
#include <QSystemTrayIcon>
#include <QTimer>

void AppDelegate::setupStatusBarItem()
{
    m_statusBarItem = new QSystemTrayIcon(this);
    // Our coloured mark rather than a white glyph: it reads on light and dark panels alike.
    m_statusBarItem->setIcon(appicon::icon());
    QGuiApplication::setWindowIcon(appicon::icon());
    m_statusBarItem->setToolTip("OmbrixWidget");
    m_statusMenu = std::make_unique<QMenu>();
    QAction* show = m_statusMenu->addAction("Mostra Control Panel", this, &AppDelegate::showControlPanel);
    show->setShortcut(QKeySequence("Ctrl+P"));
    m_statusMenu->addSeparator();
    QAction* quit = m_statusMenu->addAction("Esci", this, &AppDelegate::quitApp);
    quit->setShortcut(QKeySequence("Ctrl+Q"));
    m_statusBarItem->setContextMenu(m_statusMenu.get());
    m_statusMenu->installEventFilter(this);
    // A left click opens the same menu: the item has no action of its own.
    connect(m_statusBarItem, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason r) {
        if (r == QSystemTrayIcon::Trigger)
            m_statusMenu->popup(QCursor::pos());
    });
    // Shown even with no tray host yet; the item docks when one appears.
    m_statusBarItem->show();
}

void AppDelegate::createControlPanelWindow()
{
    if (m_controlPanelWindow)
        return;
    // An engine of its own, gone with the window: what it compiled and allocated for the panel
    // (its types, its JavaScript heap), the window's backing store and the scene's last nodes,
    // which a hidden window never renders away, would otherwise stay for the app's whole life.
    m_panelEngine = std::make_unique<QQmlEngine>();
    m_panelEngine->addImportPath("qrc:/");
    if (!m_panelModel)
        m_panelModel = new ControlPanelModel(this); // what the user left: tab, scroll, typed city
    auto* window = new QQuickWindow();
    window->setFlags(Qt::Window | Qt::FramelessWindowHint);
    window->setColor(QColor(24, 24, 28));
    window->setTitle("OmbrixWidget Control Panel");
    // Centred the first time; then back where it was left.
    const Rect v = screen::visibleFrame();
    const Rect frame{(v.width - 420.0) * 0.5, (v.height - 600.0) * 0.5, 420.0, 600.0};
    QRect geometry = screen::toQt(frame, screen::primaryHeight());
    if (m_panelPosition)
        geometry.moveTopLeft(*m_panelPosition);
    window->setGeometry(geometry);
    window->setMinimumSize(QSize(420, 600));
    window->setMaximumSize(QSize(420, 600));
    window->installEventFilter(this);
    m_controlPanelWindow = window;
    // Released once the event loop turns: the panel is often hidden from inside its own scene (its
    // close control), and it may be shown again before then.
    connect(window, &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible)
            QTimer::singleShot(0, this, [this] {
                if (m_controlPanelWindow && !m_controlPanelWindow->isVisible())
                    releaseControlPanel();
            });
    });
    QQmlComponent component(m_panelEngine.get(), QUrl("qrc:/Ombrix/ControlPanel/ControlPanelView.qml"));
    auto* root = qobject_cast<QQuickItem*>(
        component.createWithInitialProperties({{"model", QVariant::fromValue(m_panelModel)}}));
    if (!root) {
        qCWarning(lcApp).noquote() << "the Control Panel did not load:" << component.errorString();
        return;
    }
    root->setParentItem(window->contentItem());
    root->setParent(window);
}

void AppDelegate::releaseControlPanel()
{
    if (!m_controlPanelWindow)
        return;
    m_panelPosition = m_controlPanelWindow->position();
    delete m_controlPanelWindow.data(); // its scene with it, before the engine
    m_panelEngine.reset();
    memory::returnFreePages();
}

void AppDelegate::showControlPanel()
{
    createControlPanelWindow();
    m_controlPanelWindow->show();
    m_controlPanelWindow->raise();
    m_controlPanelWindow->requestActivate();
}

bool AppDelegate::eventFilter(QObject* watched, QEvent* event)
{
    // Qt matches a menu action's shortcut only in an active widget window, which neither the tray's
    // popup nor the panel (a Qt Quick window) is: the keys the menu shows are matched here.
    if (event->type() == QEvent::KeyPress && m_statusMenu) {
        const QKeySequence pressed(static_cast<QKeyEvent*>(event)->keyCombination());
        for (QAction* action : m_statusMenu->actions()) {
            if (!action->shortcut().isEmpty() && action->shortcut() == pressed) {
                m_statusMenu->close();
                action->trigger();
                return true;
            }
        }
    }
    return QObject::eventFilter(watched, event);
}

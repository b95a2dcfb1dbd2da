// The tray item and the Control Panel window.
#include "AppDelegate.h"

#include "AppIcon.h"
#include "AppLog.h"
#include "ControlPanelModel.h"
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
    auto* window = new QQuickWindow();
    window->setFlags(Qt::Window | Qt::FramelessWindowHint);
    window->setColor(QColor(24, 24, 28));
    window->setTitle("OmbrixWidget Control Panel");
    const Rect v = screen::visibleFrame();
    const Rect frame{(v.width - 420.0) * 0.5, (v.height - 600.0) * 0.5, 420.0, 600.0};
    window->setGeometry(screen::toQt(frame, screen::primaryHeight()));
    window->setMinimumSize(QSize(420, 600));
    window->setMaximumSize(QSize(420, 600));
    window->installEventFilter(this);
    // The window and the panel's state are made once; the scene lives only while the panel is shown.
    m_panelModel = new ControlPanelModel(window);
    // Released once the event loop turns: the panel is often hidden from inside its own scene (its
    // close control), and it may be shown again before then.
    connect(window, &QWindow::visibleChanged, this, [this](bool visible) {
        if (!visible)
            QTimer::singleShot(0, this, [this] {
                if (m_controlPanelWindow && !m_controlPanelWindow->isVisible())
                    releaseControlPanelScene();
            });
    });
    m_controlPanelWindow = window;
}

void AppDelegate::buildControlPanelScene()
{
    if (m_panelScene)
        return;
    QQmlComponent component(m_engine.get(), QUrl("qrc:/Ombrix/ControlPanel/ControlPanelView.qml"));
    auto* root = qobject_cast<QQuickItem*>(
        component.createWithInitialProperties({{"model", QVariant::fromValue(m_panelModel.data())}}));
    if (!root) {
        qCWarning(lcApp).noquote() << "the Control Panel did not load:" << component.errorString();
        return;
    }
    root->setParentItem(m_controlPanelWindow->contentItem());
    root->setParent(m_controlPanelWindow);
    m_panelScene = root;
}

void AppDelegate::releaseControlPanelScene()
{
    if (!m_panelScene)
        return;
    delete m_panelScene.data();
    m_controlPanelWindow->releaseResources();
    m_engine->trimComponentCache();
}

void AppDelegate::showControlPanel()
{
    if (!m_controlPanelWindow)
        return;
    buildControlPanelScene();
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

#include "AppDelegate.h"

#include "AppLog.h"
#include "Autostart.h"
#include "Screen.h"
#include "SettingsManager.h"
#include "Snapping.h"
#include "WidgetHostingView.h"
#include "WidgetTable.h"
#include "WidgetWindow.h"
#include "X11Window.h"

#include <QCoreApplication>
#include <QMenu>
#include <QQmlComponent>
#include <QQmlEngine>
#include <QQuickItem>

Q_LOGGING_CATEGORY(lcApp, "ombrix.app", QtWarningMsg)

AppDelegate::AppDelegate(QObject* parent)
    : QObject(parent), m_settings(SettingsManager::shared()), m_engine(std::make_unique<QQmlEngine>())
{
    // Our modules' qmldir files sit under qrc:/<URI>/; through them one module uses another's QML types.
    m_engine->addImportPath("qrc:/");
    connect(&m_settings, &SettingsManager::widgetEnabledChanged, this, &AppDelegate::toggleWidget);
    connect(&m_settings, &SettingsManager::widgetSizeChanged, this, &AppDelegate::resizeWidget);
    connect(&m_settings, &SettingsManager::clickThroughChanged, this, &AppDelegate::updateClickThrough);
}

AppDelegate::~AppDelegate()
{
    // Every window's view tree lives in the engine's contexts: the windows go before the engine.
    qDeleteAll(m_widgetWindows);
    m_widgetWindows.clear();
    // The panel's scene before the state it binds to.
    releaseControlPanel();
}

void AppDelegate::applicationDidFinishLaunching(bool showPanel)
{
    // There is no dock to leave: the tray item and the panel are the way in.
    setupStatusBarItem();
    restoreWidgets();
    // A login entry of an earlier version would open the panel at every login.
    autostart::upgrade(QCoreApplication::applicationFilePath());
    if (showPanel)
        showControlPanel();
}

void AppDelegate::applicationWillTerminate()
{
    for (WidgetWindow* w : std::as_const(m_widgetWindows))
        w->close();
}

void AppDelegate::restoreWidgets()
{
    for (const QString& name : widgets::names)
        if (widgets::enabledOf(m_settings, name))
            spawnWidget(name);
}

void AppDelegate::toggleWidget(const QString& name, bool enabled)
{
    enabled ? spawnWidget(name) : despawnWidget(name);
}

void AppDelegate::spawnWidget(const QString& name)
{
    if (m_widgetWindows.contains(name))
        return;
    const double width = widgets::widthForSize(widgets::sizeOf(m_settings, name));
    const QString view = widgets::viewName(name);
    if (view.isEmpty())
        return;
    QQmlComponent component(m_engine.get(), QUrl("qrc:/Ombrix/WidgetViews/" + view + ".qml"));
    auto* root = qobject_cast<QQuickItem*>(component.create());
    if (!root)
        qCWarning(lcApp).noquote() << "the" << name << "view did not load:" << component.errorString();
    auto* hosting = new WidgetHostingView(root);
    hosting->setFrame(Rect{0, 0, width, widgets::height});
    const Rect visible = screen::visibleFrame();
    const Position origin = getSavedPosition(name).value_or(*widgets::defaultOrigin(name, visible, width));
    const bool clickThrough = widgets::clickThroughOf(m_settings, name);
    auto* window = new WidgetWindow(name, hosting, Rect{origin.x, origin.y, width, widgets::height}, clickThrough);
    connect(window, &WidgetWindow::didMove, this, [this, window] { windowDidMove(window); });
    window->orderFront();
    m_widgetWindows.insert(name, window);
}

void AppDelegate::despawnWidget(const QString& name)
{
    WidgetWindow* window = m_widgetWindows.value(name);
    if (!window)
        return;
    disconnect(window, nullptr, this, nullptr);
    window->close();
    m_widgetWindows.remove(name);
    window->deleteLater();
}

void AppDelegate::resizeWidget(const QString& name, const QString& size)
{
    WidgetWindow* window = m_widgetWindows.value(name);
    if (!window)
        return;
    const double newWidth = widgets::widthForSize(size);
    const Rect old = window->frame();
    // The right and bottom edges stay where they are.
    const Rect frame{old.x - (newWidth - old.width), old.y, newWidth, widgets::height};
    window->contentView()->setFrame(Rect{0, 0, newWidth, widgets::height});
    // Animated; its move notification comes during the call, so the origin stored next is the one that stays.
    window->setFrame(frame, true);
    m_settings.setPosition(Position{frame.x, frame.y}, name);
}

void AppDelegate::updateClickThrough(const QString& name, bool enabled)
{
    WidgetWindow* window = m_widgetWindows.value(name);
    if (!window)
        return;
    // Where the manager's frame would catch the clicks, the window is made anew, managed or not.
    if (x11::windowManagerFramesCatchClicks()) {
        despawnWidget(name);
        spawnWidget(name);
        return;
    }
    window->setClickThrough(enabled);
}

std::optional<Position> AppDelegate::getSavedPosition(const QString& name) const
{
    return m_settings.position(name);
}

void AppDelegate::windowDidMove(QObject* sender)
{
    if (m_isSnapping)
        return;
    auto* window = qobject_cast<WidgetWindow*>(sender);
    if (!window)
        return;
    const QString name = m_widgetWindows.key(window);
    if (name.isEmpty())
        return;
    m_isSnapping = true;
    const Rect current = window->frame();
    std::vector<Rect> others;
    for (auto it = m_widgetWindows.cbegin(); it != m_widgetWindows.cend(); ++it)
        if (it.key() != name)
            others.push_back(it.value()->frame());
    const Rect snapped = snapping::snap(current, screen::visibleFrame(), others);
    if (snapped != current)
        window->setFrame(snapped);
    m_settings.setPosition(Position{snapped.x, snapped.y}, name);
    m_isSnapping = false;
}

void AppDelegate::quitApp()
{
    QCoreApplication::quit();
}

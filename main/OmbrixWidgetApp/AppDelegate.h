#pragma once
// Starts and stops the application, owns the registry of live widget windows, creates, destroys,
// resizes and snaps them, and owns the tray item and the Control Panel window.
#include "Geometry.h"

#include <QMap>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QQuickWindow>
#include <memory>
#include <optional>

class ControlPanelModel;
class QQmlEngine;
class QQuickItem;
class QSystemTrayIcon;
class QMenu;
class SettingsManager;
class WidgetWindow;
struct Position;

class AppDelegate : public QObject {
    Q_OBJECT

  public:
    explicit AppDelegate(QObject* parent = nullptr);
    ~AppDelegate() override;

    // A quiet start (at login) restores the widgets and the tray item without showing the panel.
    void applicationDidFinishLaunching(bool showPanel = true);
    void applicationWillTerminate();

    void restoreWidgets();
    // What the windows do when the store's switches change: the panel writes the store, not the windows.
    void toggleWidget(const QString& name, bool enabled);
    void spawnWidget(const QString& name);
    void despawnWidget(const QString& name);
    void resizeWidget(const QString& name, const QString& size);
    void updateClickThrough(const QString& name, bool enabled);
    std::optional<Position> getSavedPosition(const QString& name) const;

    void windowDidMove(QObject* sender);

    void setupStatusBarItem();
    // The panel's window and scene live while it is shown; its state (ControlPanelModel) and its
    // place stay.
    void createControlPanelWindow();
    void showControlPanel();
    void releaseControlPanel();
    void quitApp();

    const QMap<QString, WidgetWindow*>& widgetWindows() const { return m_widgetWindows; }
    QQuickWindow* controlPanelWindow() const { return m_controlPanelWindow; }

  protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    QSystemTrayIcon* m_statusBarItem = nullptr;
    std::unique_ptr<QMenu> m_statusMenu;
    QPointer<QQuickWindow> m_controlPanelWindow;
    ControlPanelModel* m_panelModel = nullptr;
    std::optional<QPoint> m_panelPosition;
    QMap<QString, WidgetWindow*> m_widgetWindows;
    SettingsManager& m_settings;
    bool m_isSnapping = false;
    std::unique_ptr<QQmlEngine> m_engine;      // the widgets'
    std::unique_ptr<QQmlEngine> m_panelEngine; // the panel's, while it is shown
};

#pragma once
// The window manager's "show desktop" mode (_NET_SHOWING_DESKTOP on the root), watched, and the
// way back on screen for a widget a manager hid for it. Off X11 nothing is told.
#include <QAbstractNativeEventFilter>
#include <QObject>

class QWindow;

class ShowingDesktop : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    static ShowingDesktop& shared();

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

    // Whether the X server shows `window` (mapped, and so is every ancestor).
    static bool isViewable(QWindow* window);
    // Asks the manager to show `window` again, as a pager does for a window it picks.
    static void bringBack(QWindow* window);

  signals:
    // The desktop is being shown: a manager may have hidden ordinary windows.
    void desktopShown();

  private:
    ShowingDesktop();
    uint32_t m_atom = 0;
};

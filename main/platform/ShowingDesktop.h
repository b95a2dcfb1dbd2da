#pragma once
// The window manager's "show desktop" mode (_NET_SHOWING_DESKTOP on the root), watched. Off X11
// nothing is told.
#include <QAbstractNativeEventFilter>
#include <QObject>

class ShowingDesktop : public QObject, public QAbstractNativeEventFilter {
    Q_OBJECT

  public:
    static ShowingDesktop& shared();

    bool nativeEventFilter(const QByteArray& eventType, void* message, qintptr* result) override;

  signals:
    // The desktop is being shown: a manager may have hidden ordinary windows.
    void desktopShown();

  private:
    ShowingDesktop();
    uint32_t m_atom = 0;
};

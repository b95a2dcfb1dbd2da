#pragma once
// A private X display for one test: Xvfb (1440x900) with openbox (or another window manager), and on request a tray
// host and a compositor; plus the app started inside it with its own HOME, and outside views of its windows.
#include <QImage>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRect>
#include <QString>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <vector>

struct XSessionOptions {
    bool tray = false;
    bool composite = false;      // xcompmgr
    QStringList compositor = {}; // or any other compositor's command line
    // openbox, fluxbox, xfwm4, i3 or kwin_x11.
    QString windowManager = "openbox";
};

class XSession {
  public:
    explicit XSession(XSessionOptions options = {});
    ~XSession();

    bool ok() const { return !m_display.isEmpty() && m_managed; }
    QString display() const { return m_display; }
    QString home() const { return m_home.path(); }
    QString configDir() const { return m_home.path() + "/.config/OmbrixWidget"; }
    QProcessEnvironment environment() const;

    // Runs a tool on this display and gives its standard output (empty on failure).
    // Whether a helper started with the session (openbox, a compositor) still runs.
    bool helperRunning(const QString& program) const;
    QString run(const QString& program, const QStringList& args, int timeoutMs = 10000) const;

    // Starts build/OmbrixWidget on this display with this session's HOME, plus `extra` variables
    // (a private session bus, for one).
    bool startApp(const QProcessEnvironment& extra = {});
    void stopApp();
    QProcess* app() { return m_app.get(); }

    // Windows by exact title or by WM_CLASS instance, as X ids.
    QStringList windowsNamed(const QString& title) const;
    // Waits for exactly one visible window of that title and gives its id (empty on time-out).
    QString waitForWindow(const QString& title, int timeoutMs = 15000) const;
    // A window's outer geometry in X (top-left) coordinates, read with xwininfo.
    QRect geometryOf(const QString& windowId) const;
    QImage grabScreen() const;

    // Waits for `condition`, processing events, up to `timeoutMs`.
    static bool waitFor(const std::function<bool()>& condition, int timeoutMs = 15000);

  private:
    void startWindowManager(const QString& name);
    void startHelper(const QString& program, const QStringList& args, const QProcessEnvironment& extra = {});

    QTemporaryDir m_home;
    QString m_display;
    std::unique_ptr<QProcess> m_xvfb;
    std::vector<std::unique_ptr<QProcess>> m_helpers;
    bool m_managed = false; // a window manager answers on the display
    std::unique_ptr<QProcess> m_app;
};

QString buildDir();
QString artifactsDir();

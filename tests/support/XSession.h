#pragma once
// The one fixture of whole-app tests: a private X display (Xvfb, 1440x900) with a window manager and,
// on request, a tray host and a compositor; a temporary HOME with the app's settings; the app started
// there; its windows found, clicked and looked at from outside. A failed test leaves a screenshot.
#include "DefaultsSuite.h"
#include "SettingsRecords.h"

#include <QImage>
#include <QProcess>
#include <QRect>
#include <QTemporaryDir>
#include <functional>
#include <memory>
#include <optional>

// A program run with `env` (on the run's own display by default): its exit code and what it printed;
// one that does not end in time is killed, code -1 and nothing printed.
struct ProgramRun {
    int code = -1;
    QString out, err;
};
ProgramRun runProgram(const QString& program, const QStringList& args,
                      const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment(), int timeoutMs = 10000);
// A window's outer geometry in X coordinates (top left, y down), and its origin in the app's (bottom left, y up).
QRect xGeometry(const QString& windowId, const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment());
Position xOrigin(const QString& windowId, const QProcessEnvironment& env = QProcessEnvironment::systemEnvironment());
QString buildDir();
QString artifactsDir();

struct XSessionOptions {
    bool tray = false;
    QStringList compositor = {};       // a compositor's command line
    QString windowManager = "openbox"; // or fluxbox, xfwm4, i3, kwin_x11, mutter, mutter-wayland
};

class XSession {
  public:
    static constexpr int screenHeight = 900;

    explicit XSession(XSessionOptions options = {});
    ~XSession();

    bool ok() const { return !m_display.isEmpty() && m_managed; }
    QString home() const { return m_home.path(); }
    QProcessEnvironment environment() const;

    // The app's settings in this HOME: widgets switched on before it starts, a position it stored.
    std::unique_ptr<DefaultsSuite> settings() const;
    void enable(const QStringList& widgets, const QString& size = {});
    std::optional<Position> storedPosition(const QString& widget) const;

    // A tool run on this display: its standard output, empty on failure.
    QString run(const QString& program, const QStringList& args, int timeoutMs = 10000) const
    {
        return runProgram(program, args, environment(), timeoutMs).out;
    }
    // A real click; a press, a drag that waits for the window to follow, and a release.
    void click(QPoint at) const { pointer(at, "click"); }
    bool drag(const QString& windowId, QPoint from, QPoint to) const;

    // build/OmbrixWidget (or `command`) on this display, with `extra` variables (a private bus, for one).
    bool startApp(const QProcessEnvironment& extra = {}, const QStringList& command = {});
    QProcess* app() { return m_app.get(); }

    // Windows by exact title, as X ids; the one visible window of a title, waited for.
    QStringList windowsNamed(const QString& title) const;
    QString waitForWindow(const QString& title, int timeoutMs = 60000) const;
    QString widget(const QString& name) const { return waitForWindow("OmbrixWidget " + name); }
    QRect geometryOf(const QString& windowId) const { return xGeometry(windowId, environment()); }
    Position originOf(const QString& windowId) const { return xOrigin(windowId, environment()); }
    QImage grabScreen() const;
    QImage shot(const QString& windowId) const { return grabScreen().copy(geometryOf(windowId)); }

    // Waits for `condition` while events keep flowing, up to `timeoutMs`.
    static bool waitFor(const std::function<bool()>& condition, int timeoutMs = 30000);

  private:
    // The pointer moved to `at`, then the left button's "down", "up" or "click" (or nothing).
    void pointer(QPoint at, const QString& button = {}) const;
    void startHelper(const QString& program, const QStringList& args);

    QTemporaryDir m_home;
    QString m_display;
    QString m_xauthority;                                                  // XWayland's key
    QString m_pointerPipe;                                                 // to mutter's pointer, on Wayland
    std::vector<std::unique_ptr<QProcess, void (*)(QProcess*)>> m_helpers; // Xvfb first
    bool m_managed = false;                                                // a window manager answers
    std::unique_ptr<QProcess> m_app;
};

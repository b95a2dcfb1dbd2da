#include "XSession.h"

#include "SettingsManager.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QThread>
#include <gtest/gtest.h>
#include <utility>

QString buildDir()
{
    const QString env = qEnvironmentVariable("OMBRIX_BUILD_DIR");
    return env.isEmpty() ? QCoreApplication::applicationDirPath() + "/../.." : env;
}

QString artifactsDir()
{
    const QString dir = qEnvironmentVariable("OMBRIX_ARTIFACTS", buildDir() + "/artifacts");
    QDir().mkpath(dir);
    return dir;
}

bool XSession::waitFor(const std::function<bool()>& condition, int timeoutMs)
{
    for (QDeadlineTimer deadline(timeoutMs); !deadline.hasExpired();) {
        if (condition())
            return true;
        // Polled: events keep flowing between the looks. A nested event loop here would also run
        // deferred deletions in the middle of a test, which changes what some view tests see.
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(20);
    }
    return condition();
}

XSession::XSession(XSessionOptions options)
{
    // Xvfb picks a free display and writes its number to the descriptor we name: its output. By default
    // it resets when its last client leaves and refuses connections meanwhile: a look at the root before
    // the manager connected then made the manager fail to open the display.
    // GNOME on Wayland: headless mutter with XWayland, whose display and key its child prints; the
    // pointer is then moved through mutter, by that child.
    const QString& wm = options.windowManager;
    const bool wayland = wm == "mutter-wayland";
    if (wayland)
        startHelper("dbus-run-session", {"--", "mutter", "--headless", "--wayland", "--virtual-monitor", "1440x900",
                                         "--", OMBRIX_MUTTER_POINTER, m_pointerPipe = home() + "/pointer"});
    else
        startHelper("Xvfb", {"-displayfd", "1", "-noreset", "-screen", "0", "1440x900x24", "-nolisten", "tcp"});
    QByteArray line;
    if (!waitFor([&] { return (line += m_helpers.back()->readAllStandardOutput()).contains('\n'); }, 60000))
        return;
    m_display = QString::fromLatin1(line.trimmed()).section(' ', -1);
    if (!m_display.startsWith(':'))
        m_display.prepend(':');
    m_xauthority = QString::fromLatin1(line.trimmed()).section(' ', 0, 0, QString::SectionSkipEmpty);
    if (!wayland)
        m_xauthority.clear();
    QDir().mkpath(home() + "/.config/OmbrixWidget");
    QStringList wmArgs;
    if (wm == "i3") {
        // Its own config: no first-run wizard, and the tests' ordinary windows float.
        QFile config(home() + "/i3.conf");
        config.open(QIODevice::WriteOnly);
        config.write(
            "# i3 config file (v4)\nfont pango:monospace 8\nfor_window [class=\"Xmessage\"] floating enable\n");
        wmArgs = {"-c", config.fileName()};
    }
    if (wm == "xfwm4")
        wmArgs = {"--compositor=off"};
    if (wm == "fluxbox") {
        // Its own actions (ShowDesktop) are sent with fluxbox-remote.
        QDir().mkpath(home() + "/.fluxbox");
        QFile init(home() + "/.fluxbox/init");
        init.open(QIODevice::WriteOnly);
        init.write("session.screen0.allowRemoteActions: true\n");
    }
    // GNOME's manager (and compositor) on X11 wants a session bus of its own.
    QString program = wm;
    if (wm == "mutter") {
        program = "dbus-run-session";
        wmArgs = {"--", "mutter", "--x11", "--replace"};
    }
    // A manager that exits is started again; one that runs gets time to answer on a loaded machine.
    const auto managed = [&] { return run("xprop", {"-root", "_NET_SUPPORTING_WM_CHECK"}).contains("window id"); };
    m_managed = wayland && waitFor(managed, 60000);
    for (int attempt = 0; attempt < 3 && !m_managed && !wayland; ++attempt) {
        if (attempt)
            m_helpers.pop_back();
        startHelper(program, wmArgs);
        const QProcess* p = m_helpers.back().get();
        m_managed = waitFor([&] { return p->state() == QProcess::NotRunning || managed(); }, 60000) && managed();
    }
    if (options.tray)
        startHelper("trayer", {"--edge", "top", "--align", "right", "--widthtype", "request", "--height", "24"});
    if (!options.compositor.isEmpty())
        startHelper(options.compositor.first(), options.compositor.mid(1));
}

XSession::~XSession()
{
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    if (test && ::testing::Test::HasFailure()) {
        const QString failed = artifactsDir() + QString("/failed-%1.%2").arg(test->test_suite_name(), test->name());
        QFile::remove(failed + ".log");
        QFile::copy(home() + "/helpers.log", failed + ".log"); // what the display and its helpers said
        if (ok())
            grabScreen().save(failed + ".png");
    }
    if (m_app && m_app->state() != QProcess::NotRunning) {
        m_app->terminate();
        if (!m_app->waitForFinished(10000))
            m_app->kill();
        m_app->waitForFinished(2000);
    }
    m_app.reset();
    while (!m_helpers.empty())
        m_helpers.pop_back(); // the display last
}

QProcessEnvironment XSession::environment() const
{
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("DISPLAY", m_display);
    env.insert("HOME", home());
    env.insert("XDG_CONFIG_HOME", home() + "/.config");
    env.insert("XDG_RUNTIME_DIR", home());
    if (!m_xauthority.isEmpty())
        env.insert("XAUTHORITY", m_xauthority);
    env.remove("QT_QPA_PLATFORM");
    env.remove("DBUS_SESSION_BUS_ADDRESS");
    env.insert("KWIN_COMPOSE", "N"); // no compositing on a virtual display
    // Off the machine's own UPower; a test that wants one hands its stand-in's address.
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/ombrix-no-system-bus");
    return env;
}

std::unique_ptr<DefaultsSuite> XSession::settings() const
{
    return DefaultsSuite::open(SettingsManager::suiteName, home() + "/.config/OmbrixWidget");
}

void XSession::enable(const QStringList& widgets, const QString& size)
{
    auto suite = settings();
    for (const QString& name : widgets) {
        suite->setObject(true, "widget." + name + ".enabled");
        if (!size.isEmpty())
            suite->setObject(size, "widget." + name + ".size");
    }
    suite->synchronize();
}

std::optional<Position> XSession::storedPosition(const QString& widget) const
{
    const auto data = settings()->dataForKey("widget." + widget + ".position");
    return data ? Position::fromJson(*data) : std::nullopt;
}

void XSession::startHelper(const QString& program, const QStringList& args)
{
    m_helpers.emplace_back(new QProcess, [](QProcess* p) {
        p->kill();
        p->waitForFinished(3000);
        delete p;
    });
    QProcess* p = m_helpers.back().get();
    p->setProcessEnvironment(environment());
    p->setStandardErrorFile(home() + "/helpers.log", QIODevice::Append);
    if (m_helpers.size() > 1) // the display's own tells where it is
        p->setStandardOutputFile(QProcess::nullDevice());
    p->start(program, args);
    p->waitForStarted(10000);
}

ProgramRun runProgram(const QString& program, const QStringList& args, const QProcessEnvironment& env, int timeoutMs)
{
    QProcess p; // killed on the way out if it hangs
    p.setProcessEnvironment(env);
    p.start(program, args);
    if (!p.waitForFinished(timeoutMs))
        return {};
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

void XSession::pointer(QPoint at, const QString& button) const
{
    if (m_pointerPipe.isEmpty()) {
        const QStringList then = button.isEmpty()    ? QStringList{}
                                 : button == "click" ? QStringList{"click", "1"}
                                                     : QStringList{"mouse" + button, "1"};
        run("xdotool", QStringList{"mousemove", QString::number(at.x()), QString::number(at.y())} + then);
        return;
    }
    QFile pipe(m_pointerPipe);
    if (!pipe.open(QIODevice::WriteOnly))
        return;
    pipe.write(QString("move %1 %2\n").arg(at.x()).arg(at.y()).toLatin1());
    for (const QString& b : button == "click" ? QStringList{"down", "up"} : QStringList{button})
        pipe.write(b.toLatin1() + "\n");
    pipe.close();
    QThread::msleep(100); // mutter takes the steps in its own time
}

bool XSession::drag(const QString& windowId, QPoint from, QPoint to) const
{
    QPoint last = geometryOf(windowId).topLeft();
    const auto follows = [&](int timeoutMs) {
        return waitFor(
            [&] {
                const QPoint now = geometryOf(windowId).topLeft();
                return std::exchange(last, now) != now;
            },
            timeoutMs);
    };
    // The move is handed over once the pointer travels a few points, and the window then trails it by
    // that much: steps of 4 until it follows, then the rest of the way, waited for before the release.
    pointer(from, "down");
    const QPointF unit = QPointF(to - from) * 4 / std::max(1, (to - from).manhattanLength());
    bool moving = false;
    for (int step = 1; step <= 20 && !moving; ++step) {
        pointer(from + (unit * step).toPoint());
        moving = follows(1000);
    }
    pointer(to);
    moving = moving && follows(10000);
    pointer(to, "up");
    return moving;
}

bool XSession::startApp(const QProcessEnvironment& extra, const QStringList& command)
{
    const QStringList program = command.isEmpty() ? QStringList{buildDir() + "/OmbrixWidget"} : command;
    m_app = std::make_unique<QProcess>();
    QProcessEnvironment env = environment();
    env.insert(extra);
    m_app->setProcessEnvironment(env);
    m_app->setProcessChannelMode(QProcess::ForwardedChannels);
    m_app->start(program.first(), program.mid(1));
    return m_app->waitForStarted(10000);
}

QStringList XSession::windowsNamed(const QString& title) const
{
    return run("xdotool", {"search", "--onlyvisible", "--name", "^" + QRegularExpression::escape(title) + "$"})
        .split('\n', Qt::SkipEmptyParts);
}

QString XSession::waitForWindow(const QString& title, int timeoutMs) const
{
    QStringList ids;
    waitFor([&] { return (ids = windowsNamed(title)).size() == 1; }, timeoutMs);
    return ids.size() == 1 ? ids.first() : QString();
}

QRect xGeometry(const QString& windowId, const QProcessEnvironment& env)
{
    const QString out = runProgram("xwininfo", {"-id", windowId}, env).out;
    const auto num = [&](const char* label) {
        return QRegularExpression(QString(label) + R"(:\s+(-?\d+))").match(out).captured(1).toInt();
    };
    return QRect(num("Absolute upper-left X"), num("Absolute upper-left Y"), num("Width"), num("Height"));
}

Position xOrigin(const QString& windowId, const QProcessEnvironment& env)
{
    const QRect g = xGeometry(windowId, env);
    return Position{double(g.x()), double(XSession::screenHeight - g.bottom() - 1)};
}

QImage XSession::grabScreen() const
{
    const QString file = home() + "/screen.png";
    QFile::remove(file);
    run(buildDir() + "/tests/support/ombrix-screenshot", {file});
    return QImage(file);
}

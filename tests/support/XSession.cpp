#include "XSession.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QRegularExpression>
#include <QThread>
#include <algorithm>
#include <fcntl.h>
#include <unistd.h>

QString buildDir()
{
    const QString env = qEnvironmentVariable("OMBRIX_BUILD_DIR");
    return env.isEmpty() ? QCoreApplication::applicationDirPath() + "/../.." : env;
}

QString artifactsDir()
{
    QString dir = qEnvironmentVariable("OMBRIX_ARTIFACTS");
    if (dir.isEmpty())
        dir = buildDir() + "/artifacts";
    QDir().mkpath(dir);
    return dir;
}

bool XSession::waitFor(const std::function<bool()>& condition, int timeoutMs)
{
    QDeadlineTimer deadline(timeoutMs);
    while (!deadline.hasExpired()) {
        if (condition())
            return true;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        QThread::msleep(30);
    }
    return condition();
}

XSession::XSession(XSessionOptions options)
{
    // Xvfb picks a free display and writes its number to the pipe we hand it.
    int fds[2];
    if (pipe(fds) != 0)
        return;
    m_xvfb = std::make_unique<QProcess>();
    m_xvfb->setProgram("Xvfb");
    m_xvfb->setArguments({"-displayfd", QString::number(fds[1]), "-screen", "0", "1440x900x24", "-nolisten", "tcp"});
    m_xvfb->setChildProcessModifier([fd = fds[0]] { ::close(fd); });
    m_xvfb->setStandardOutputFile(QProcess::nullDevice());
    m_xvfb->setStandardErrorFile(QProcess::nullDevice());
    m_xvfb->start();
    ::close(fds[1]);
    QByteArray number;
    fcntl(fds[0], F_SETFL, O_NONBLOCK);
    waitFor(
        [&] {
            char buf[16];
            const ssize_t n = ::read(fds[0], buf, sizeof buf);
            if (n > 0)
                number.append(buf, n);
            return number.contains('\n');
        },
        10000);
    ::close(fds[0]);
    if (!number.contains('\n'))
        return;
    m_display = ":" + QString::fromLatin1(number.trimmed());
    // On a loaded machine a manager now and then never gets going on a new display; another start
    // of it does.
    for (int attempt = 0; attempt < 3; ++attempt) {
        startWindowManager(options.windowManager);
        m_managed = waitFor(
            [&] {
                return run("xprop", {"-root", "_NET_SUPPORTING_WM_CHECK"}).contains("window id");
            },
            8000);
        if (m_managed)
            break;
        m_helpers.back()->kill();
        m_helpers.back()->waitForFinished(3000);
        m_helpers.pop_back();
    }
    if (options.tray)
        startHelper("trayer", {"--edge", "top", "--align", "right", "--widthtype", "request", "--height", "24"});
    if (options.composite)
        startHelper("xcompmgr", {});
    if (!options.compositor.isEmpty())
        startHelper(options.compositor.first(), options.compositor.mid(1));
    QDir().mkpath(configDir());
}

XSession::~XSession()
{
    stopApp();
    for (auto it = m_helpers.rbegin(); it != m_helpers.rend(); ++it) {
        (*it)->kill();
        (*it)->waitForFinished(3000);
    }
    if (m_xvfb) {
        m_xvfb->kill();
        m_xvfb->waitForFinished(3000);
    }
}

QProcessEnvironment XSession::environment() const
{
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("DISPLAY", m_display);
    env.insert("HOME", m_home.path());
    env.insert("XDG_CONFIG_HOME", m_home.path() + "/.config");
    env.insert("XDG_RUNTIME_DIR", m_home.path());
    env.remove("QT_QPA_PLATFORM");
    env.remove("DBUS_SESSION_BUS_ADDRESS");
    // Off the machine's own UPower; a test that wants one hands its stand-in's address.
    env.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent/ombrix-no-system-bus");
    return env;
}

void XSession::startWindowManager(const QString& name)
{
    if (name == "i3") {
        // Its own config, so no first-run wizard; the test's normal windows float like dialogs.
        QFile config(m_home.path() + "/i3.conf");
        config.open(QIODevice::WriteOnly);
        config.write(
            "# i3 config file (v4)\nfont pango:monospace 8\nfor_window [class=\"Xmessage\"] floating enable\n");
        config.close();
        startHelper("i3", {"-c", config.fileName()});
    } else if (name == "kwin_x11") {
        // No compositing on a virtual display.
        QProcessEnvironment env;
        env.insert("KWIN_COMPOSE", "N");
        startHelper("kwin_x11", {}, env);
    } else if (name == "xfwm4") {
        startHelper("xfwm4", {"--compositor=off"});
    } else {
        startHelper(name, {});
    }
}

void XSession::startHelper(const QString& program, const QStringList& args, const QProcessEnvironment& extra)
{
    auto p = std::make_unique<QProcess>();
    QProcessEnvironment env = environment();
    env.insert(extra);
    p->setProcessEnvironment(env);
    p->setStandardOutputFile(QProcess::nullDevice());
    p->setStandardErrorFile(QProcess::nullDevice());
    p->start(program, args);
    p->waitForStarted(5000);
    m_helpers.push_back(std::move(p));
}

bool XSession::helperRunning(const QString& program) const
{
    return std::any_of(m_helpers.begin(), m_helpers.end(),
                       [&](const auto& p) { return p->program() == program && p->state() == QProcess::Running; });
}

QString XSession::run(const QString& program, const QStringList& args, int timeoutMs) const
{
    QProcess p;
    p.setProcessEnvironment(environment());
    p.start(program, args);
    if (!p.waitForFinished(timeoutMs)) {
        p.kill();
        p.waitForFinished(1000);
        return {};
    }
    return QString::fromUtf8(p.readAllStandardOutput());
}

bool XSession::startApp(const QProcessEnvironment& extra)
{
    m_app = std::make_unique<QProcess>();
    QProcessEnvironment env = environment();
    env.insert(extra);
    m_app->setProcessEnvironment(env);
    m_app->setProcessChannelMode(QProcess::ForwardedChannels);
    m_app->start(buildDir() + "/OmbrixWidget", {});
    return m_app->waitForStarted(5000);
}

void XSession::stopApp()
{
    if (!m_app)
        return;
    if (m_app->state() != QProcess::NotRunning) {
        m_app->terminate();
        if (!m_app->waitForFinished(5000)) {
            m_app->kill();
            m_app->waitForFinished(2000);
        }
    }
    m_app.reset();
}

QStringList XSession::windowsNamed(const QString& title) const
{
    const QString out =
        run("xdotool", {"search", "--onlyvisible", "--name", "^" + QRegularExpression::escape(title) + "$"});
    return out.split('\n', Qt::SkipEmptyParts);
}

QString XSession::waitForWindow(const QString& title, int timeoutMs) const
{
    QString id;
    waitFor(
        [&] {
            const auto ids = windowsNamed(title);
            id = ids.size() == 1 ? ids.first() : QString();
            return !id.isEmpty();
        },
        timeoutMs);
    return id;
}

QRect XSession::geometryOf(const QString& windowId) const
{
    const QString out = run("xwininfo", {"-id", windowId});
    const auto num = [&](const char* label) {
        const QRegularExpression re(QString(label) + R"(:\s+(-?\d+))");
        return re.match(out).captured(1).toInt();
    };
    return QRect(num("Absolute upper-left X"), num("Absolute upper-left Y"), num("Width"), num("Height"));
}

QImage XSession::grabScreen() const
{
    const QString file = m_home.path() + "/screen.png";
    QFile::remove(file);
    QProcess p;
    p.setProcessEnvironment(environment());
    p.start(buildDir() + "/tests/support/ombrix-screenshot", {file});
    p.waitForFinished(10000);
    return QImage(file);
}

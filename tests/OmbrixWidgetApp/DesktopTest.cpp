// The program as the desktop meets it: its command line, one copy per display, the autostart entry,
// the installed files, and the tray item on a StatusNotifier host.
#include "PrivateBus.h"
#include "XSession.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <signal.h>

namespace {

struct Outcome {
    int code = -1;
    QString out, err;
};

Outcome runProgram(const QString& program, const QStringList& args, const QProcessEnvironment& env)
{
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(program, args);
    if (!p.waitForFinished(60000)) {
        p.kill();
        p.waitForFinished(2000);
        return {};
    }
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

const QString kPanel = "OmbrixWidget Control Panel";

} // namespace

TEST(Desktop, CommandLineOptionsAndAMissingDisplayAnswerWithoutAWindow)
{
    auto env = QProcessEnvironment::systemEnvironment();
    for (const char* var : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        env.remove(var);
    const struct {
        QStringList args;
        int code;
        QString out, err;
    } cases[] = {
        {{"--help"}, 0, "Uso: OmbrixWidget [--help | --version]\n", ""},
        {{"--version"}, 0, "OmbrixWidget " OMBRIX_VERSION "\n", ""},
        {{"--frob"}, 2, "", "OmbrixWidget: opzione sconosciuta \"--frob\" (vedi --help)\n"},
        {{},
         1,
         "",
         "OmbrixWidget: nessun display X raggiungibile (DISPLAY=\"\"): serve una sessione grafica X11 o "
         "XWayland.\n"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.args.join(' ').toStdString());
        const Outcome r = runProgram(buildDir() + "/OmbrixWidget", c.args, env);
        EXPECT_EQ(r.code, c.code);
        EXPECT_TRUE(c.out.isEmpty() ? r.out.isEmpty() : r.out.startsWith(c.out)) << r.out.toStdString();
        EXPECT_EQ(r.err, c.err);
    }
}

TEST(Desktop, OneCopyPerDisplayWhateverItsSpellingAndAfterAKill)
{
    XSession x;
    ASSERT_TRUE(x.ok() && x.startApp());
    const QRect panel = x.geometryOf(x.waitForWindow(kPanel));
    // Closed with its own control, the panel comes back when the program is started again.
    x.click(panel.topLeft() + QPoint(16, 14));
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed(kPanel).isEmpty(); }));
    for (const QString& spelling : {x.display() + ".0", "unix" + x.display()}) {
        SCOPED_TRACE(spelling.toStdString());
        auto env = x.environment();
        env.insert("DISPLAY", spelling);
        EXPECT_EQ(runProgram(buildDir() + "/OmbrixWidget", {}, env).code, 0);
        EXPECT_FALSE(x.waitForWindow(kPanel).isEmpty());
    }
    EXPECT_EQ(x.app()->state(), QProcess::Running);
    // Killed outright, a copy leaves its lock and socket behind; the next start still runs.
    ::kill(pid_t(x.app()->processId()), SIGKILL);
    ASSERT_TRUE(x.app()->waitForFinished(10000));
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed(kPanel).isEmpty(); }));
    ASSERT_TRUE(x.startApp());
    EXPECT_FALSE(x.waitForWindow(kPanel).isEmpty());
    EXPECT_EQ(x.app()->state(), QProcess::Running);
}

TEST(Desktop, StartAtLoginWritesAnEntryThatStartsTheProgramAndTheSwitchRemovesIt)
{
    XSession x;
    const QString entry = x.home() + "/.config/autostart/com.ombrixwidget.OmbrixWidget.desktop";
    const auto flipSwitch = [&] {
        const QPoint panel = x.geometryOf(x.waitForWindow(kPanel)).topLeft();
        const QImage before = x.grabScreen();
        x.click(panel + QPoint(180, 95)); // the Settings tab
        XSession::waitFor([&] { return x.grabScreen() != before; });
        x.click(panel + QPoint(363, 325));
    };
    ASSERT_TRUE(x.ok() && x.startApp());
    flipSwitch();
    ASSERT_TRUE(XSession::waitFor([&] { return QFile::exists(entry); }));
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    const QString exec = "Exec=" + QFileInfo(buildDir() + "/OmbrixWidget").canonicalFilePath();
    for (const QString& line : {QString("[Desktop Entry]"), QString("Type=Application"), QString("Name=OmbrixWidget"),
                                exec, QString("X-GNOME-Autostart-enabled=true")})
        EXPECT_TRUE(lines.contains(line)) << line.toStdString();
    // Started the way the entry says, it comes up; its switch, read from the file, removes it.
    x.stopApp();
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed(kPanel).isEmpty(); }));
    QProcess started;
    started.setProcessEnvironment(x.environment());
    started.start(exec.mid(5), {});
    flipSwitch();
    EXPECT_TRUE(XSession::waitFor([&] { return !QFile::exists(entry); }));
    started.terminate();
    started.waitForFinished(10000);
}

TEST(Desktop, InstalledFilesAreValidAndTheInstalledProgramRunsWithoutTheBuildFolder)
{
    QTemporaryDir dest;
    const QString build = QFileInfo(buildDir()).canonicalFilePath(), usr = dest.path() + "/usr";
    const QString id = "com.ombrixwidget.OmbrixWidget";
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("DESTDIR", dest.path());
    ASSERT_EQ(runProgram("cmake", {"--install", build, "--prefix", "/usr"}, env).code, 0);
    QStringList files = {"bin/OmbrixWidget", "share/applications/" + id + ".desktop",
                         "share/metainfo/" + id + ".metainfo.xml", "share/icons/hicolor/scalable/apps/" + id + ".svg"};
    for (int px : {16, 22, 24, 32, 48, 64, 128, 256})
        files << QString("share/icons/hicolor/%1x%1/apps/%2.png").arg(px).arg(id);
    for (const QString& f : files)
        EXPECT_TRUE(QFileInfo(usr + "/" + f).isFile()) << f.toStdString();
    for (const QStringList& validate :
         {QStringList{"desktop-file-validate", usr + "/share/applications/" + id + ".desktop"},
          {"appstreamcli", "validate", "--no-net", usr + "/share/metainfo/" + id + ".metainfo.xml"}}) {
        const Outcome r = runProgram(validate.first(), validate.mid(1), env);
        EXPECT_EQ(r.code, 0) << r.out.toStdString();
    }
    // In a mount namespace where the build folder is an empty tmpfs.
    XSession x;
    ASSERT_TRUE(x.ok());
    QProcess app;
    app.setProcessEnvironment(x.environment());
    app.start("unshare", {"--map-root-user", "--mount", "sh", "-c", "mount -t tmpfs none \"$1\" && exec \"$2\"", "sh",
                          build, usr + "/bin/OmbrixWidget"});
    EXPECT_FALSE(x.waitForWindow(kPanel).isEmpty());
    EXPECT_EQ(app.state(), QProcess::Running);
    app.terminate();
    app.waitForFinished(10000);
}

namespace {

// The watcher side of the protocol: enough for an item to find a host and register.
class Watcher : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
    Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hostRegistered)
    Q_PROPERTY(int ProtocolVersion READ protocolVersion)

  public:
    bool hostRegistered() const { return true; }
    int protocolVersion() const { return 0; }
    QStringList items;

  public slots:
    void RegisterStatusNotifierItem(const QString& service, const QDBusMessage& message)
    {
        items << (service.startsWith('/') ? message.service() : service);
    }
};

} // namespace

TEST(Desktop, TheTrayItemRegistersWithAStatusNotifierHostWithItsColouredIcon)
{
    PrivateBus bus;
    Watcher watcher;
    ASSERT_TRUE(bus.isRunning());
    ASSERT_TRUE(
        bus.connection().registerObject("/StatusNotifierWatcher", &watcher, QDBusConnection::ExportAllContents));
    ASSERT_TRUE(bus.connection().registerService("org.kde.StatusNotifierWatcher"));
    XSession x;
    QProcessEnvironment env;
    env.insert("DBUS_SESSION_BUS_ADDRESS", bus.address());
    ASSERT_TRUE(x.ok() && x.startApp(env));
    ASSERT_TRUE(XSession::waitFor([&] { return !watcher.items.isEmpty(); }));
    // The icon travels as ARGB pixmaps in network byte order: mostly our blue face, not white.
    QDBusMessage get = QDBusMessage::createMethodCall(watcher.items.first(), "/StatusNotifierItem",
                                                      "org.freedesktop.DBus.Properties", "Get");
    get << "org.kde.StatusNotifierItem"
        << "IconPixmap";
    const QDBusMessage reply = bus.connection().call(get, QDBus::Block, 10000);
    ASSERT_EQ(reply.type(), QDBusMessage::ReplyMessage) << reply.errorMessage().toStdString();
    const auto pixmaps = reply.arguments().value(0).value<QDBusVariant>().variant().value<QDBusArgument>();
    int blue = 0, white = 0, w = 0, h = 0;
    QByteArray argb;
    pixmaps.beginArray();
    while (!pixmaps.atEnd()) {
        pixmaps.beginStructure();
        pixmaps >> w >> h >> argb;
        pixmaps.endStructure();
        for (qsizetype i = 0; i + 3 < argb.size(); i += 4) {
            const QRgb px = qRgba(uchar(argb[i + 1]), uchar(argb[i + 2]), uchar(argb[i + 3]), uchar(argb[i]));
            blue += qAlpha(px) == 255 && qBlue(px) > 200 && qRed(px) < 100;
            white += px == qRgb(255, 255, 255);
        }
    }
    pixmaps.endArray();
    EXPECT_GT(blue, 2 * white);
    EXPECT_GT(blue, 0);
}

#include "DesktopTest.moc"

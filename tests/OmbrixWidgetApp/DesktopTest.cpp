// The program as the desktop meets it: its command line, the installed files, one copy per display and
// the autostart entry.
#include "XSession.h"

#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <signal.h>

static const QString kPanel = "OmbrixWidget Control Panel";

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
        {{"--help"}, 0, "Uso: OmbrixWidget [--minimized | --help | --version]\n", ""},
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
        const ProgramRun r = runProgram(buildDir() + "/OmbrixWidget", c.args, env, 60000);
        EXPECT_EQ(r.code, c.code);
        EXPECT_TRUE(c.out.isEmpty() ? r.out.isEmpty() : r.out.startsWith(c.out)) << r.out.toStdString();
        EXPECT_EQ(r.err, c.err);
    }
}

TEST(Desktop, InstalledFilesAreValidOneCopyPerDisplayItsPanelAsLeftAndStartAtLogin)
{
    QTemporaryDir dest;
    const QString build = QFileInfo(buildDir()).canonicalFilePath(), usr = dest.path() + "/usr";
    const QString id = "com.ombrixwidget.OmbrixWidget";
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("DESTDIR", dest.path());
    ASSERT_EQ(runProgram("cmake", {"--install", build, "--prefix", "/usr"}, env, 60000).code, 0);
    QStringList files = {"bin/OmbrixWidget", "share/applications/" + id + ".desktop",
                         "share/metainfo/" + id + ".metainfo.xml", "share/icons/hicolor/scalable/apps/" + id + ".svg"};
    for (int px : {16, 22, 24, 32, 48, 64, 128, 256})
        files << QString("share/icons/hicolor/%1x%1/apps/%2.png").arg(px).arg(id);
    for (const QString& f : files)
        EXPECT_TRUE(QFileInfo(usr + "/" + f).isFile()) << f.toStdString();
    for (const QStringList& validate :
         {QStringList{"desktop-file-validate", usr + "/share/applications/" + id + ".desktop"},
          {"appstreamcli", "validate", "--no-net", usr + "/share/metainfo/" + id + ".metainfo.xml"}}) {
        const ProgramRun r = runProgram(validate.first(), validate.mid(1), env, 60000);
        EXPECT_EQ(r.code, 0) << r.out.toStdString();
    }

    XSession x;
    const QString entry = x.home() + "/.config/autostart/" + id + ".desktop";
    const auto panel = [&] { return x.geometryOf(x.waitForWindow(kPanel)).topLeft(); };
    const auto flipSwitch = [&](bool toSettingsTab) {
        const QPoint at = panel();
        const QImage before = x.grabScreen();
        if (toSettingsTab) {
            x.click(at + QPoint(180, 95));
            XSession::waitFor([&] { return x.grabScreen() != before; });
        }
        x.click(at + QPoint(363, 325));
    };
    const auto entryIs = [&](bool present) {
        return XSession::waitFor([&] { return QFile::exists(entry) == present; });
    };
    ASSERT_TRUE(x.ok() && x.startApp());
    flipSwitch(true);
    ASSERT_TRUE(entryIs(true));
    QFile file(entry);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QStringList lines = QString::fromUtf8(file.readAll()).split('\n');
    const QString program = QFileInfo(buildDir() + "/OmbrixWidget").canonicalFilePath();
    const QString exec = "Exec=" + program + " --minimized";
    for (const QString& line : {QString("[Desktop Entry]"), QString("Type=Application"), QString("Name=OmbrixWidget"),
                                exec, QString("X-GNOME-Autostart-enabled=true")})
        EXPECT_TRUE(lines.contains(line)) << line.toStdString();
    // Closed with its own control, the same panel (still on its tab) comes back when the program is started again.
    x.click(panel() + QPoint(16, 14));
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed(kPanel).isEmpty(); }));
    env = x.environment();
    env.insert("DISPLAY", env.value("DISPLAY") + ".0"); // another spelling of the same display
    EXPECT_EQ(runProgram(buildDir() + "/OmbrixWidget", {}, env, 60000).code, 0);
    EXPECT_FALSE(x.waitForWindow(kPanel).isEmpty());
    EXPECT_EQ(x.app()->state(), QProcess::Running);
    flipSwitch(false);
    EXPECT_TRUE(entryIs(false));
    flipSwitch(false);
    ASSERT_TRUE(entryIs(true));
    // Killed outright, a copy leaves its lock and socket behind; the next one, the installed program in a
    // mount namespace where the build folder is an empty tmpfs, still runs, and its switch, read from the
    // file, removes the entry.
    ::kill(pid_t(x.app()->processId()), SIGKILL);
    ASSERT_TRUE(x.app()->waitForFinished(10000));
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed(kPanel).isEmpty(); }));
    ASSERT_TRUE(x.startApp({}, {"unshare", "--map-root-user", "--mount", "sh", "-c",
                                "mount -t tmpfs none \"$1\" && exec \"$2\"", "sh", build, usr + "/bin/OmbrixWidget"}));
    flipSwitch(true);
    EXPECT_TRUE(entryIs(false));

    // A start by the login entry is quiet: the widgets come back, the panel does not, not even when a
    // copy already runs; the option-less entry an earlier version wrote is rewritten to start so.
    ::kill(pid_t(x.app()->processId()), SIGTERM);
    ASSERT_TRUE(x.app()->waitForFinished(10000));
    QFile old(entry);
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("[Desktop Entry]\nType=Application\nName=OmbrixWidget\nExec=" + program.toUtf8() + "\n");
    old.close();
    x.enable({"clock"});
    ASSERT_TRUE(x.startApp({}, {program, "--minimized"}));
    EXPECT_FALSE(x.widget("clock").isEmpty());
    EXPECT_EQ(runProgram(program, {"--minimized"}, x.environment(), 60000).code, 0);
    EXPECT_TRUE(XSession::waitFor([&] {
        QFile now(entry);
        return now.open(QIODevice::ReadOnly) && QString::fromUtf8(now.readAll()).split('\n').contains(exec);
    }));
    // Nothing to wait for when nothing should come: two seconds for a panel that must not.
    EXPECT_FALSE(XSession::waitFor([&] { return !x.windowsNamed(kPanel).isEmpty(); }, 2000));
}

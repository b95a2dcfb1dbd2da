// The program's command line, its answer without a display, and one running copy per display.
#include "XSession.h"

#include <QProcess>
#include <gtest/gtest.h>
#include <signal.h>

namespace {

struct Outcome {
    int code = -1;
    QString out, err;
};

Outcome runApp(const QStringList& args, const QProcessEnvironment& env)
{
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(buildDir() + "/OmbrixWidget", args);
    if (!p.waitForFinished(10000)) {
        p.kill();
        p.waitForFinished(2000);
        return {};
    }
    return {p.exitStatus() == QProcess::NormalExit ? p.exitCode() : -1, QString::fromUtf8(p.readAllStandardOutput()),
            QString::fromUtf8(p.readAllStandardError())};
}

} // namespace

TEST(CommandLine, OptionsAndMissingDisplayAnswerWithoutAWindow)
{
    auto env = QProcessEnvironment::systemEnvironment();
    env.remove("DISPLAY");
    env.remove("WAYLAND_DISPLAY");
    env.remove("QT_QPA_PLATFORM");
    struct Case {
        QStringList args;
        int code;
        QString stdoutStart;
        QString stderrLine;
    };
    const Case cases[] = {
        {{"--help"}, 0, "Uso: OmbrixWidget [--help | --version]\n", ""},
        {{"--version"}, 0, "OmbrixWidget " OMBRIX_VERSION "\n", ""},
        {{"--frob"}, 2, "", "OmbrixWidget: opzione sconosciuta \"--frob\" (vedi --help)\n"},
        {{},
         1,
         "",
         "OmbrixWidget: nessun display X raggiungibile (DISPLAY=\"\"): serve una sessione grafica X11 o XWayland.\n"},
    };
    for (const Case& c : cases) {
        const Outcome r = runApp(c.args, env);
        EXPECT_EQ(r.code, c.code) << c.args.join(' ').toStdString();
        EXPECT_TRUE(c.stdoutStart.isEmpty() ? r.out.isEmpty() : r.out.startsWith(c.stdoutStart)) << r.out.toStdString();
        EXPECT_EQ(r.err, c.stderrLine);
    }
}

TEST(CommandLine, OneCopyPerDisplayWhateverItsSpellingAndAfterAKill)
{
    XSession x;
    ASSERT_TRUE(x.ok());
    ASSERT_TRUE(x.startApp());
    ASSERT_FALSE(x.waitForWindow("OmbrixWidget Control Panel").isEmpty());

    // The same display spelt ":N.0" and "unix:N": each start hands over and leaves.
    for (const QString& spelling : {x.display() + ".0", "unix" + x.display()}) {
        auto env = x.environment();
        env.insert("DISPLAY", spelling);
        const Outcome second = runApp({}, env);
        EXPECT_EQ(second.code, 0) << spelling.toStdString();
    }
    EXPECT_EQ(x.app()->state(), QProcess::Running);
    EXPECT_EQ(x.windowsNamed("OmbrixWidget Control Panel").size(), 1);

    // A copy killed outright leaves its lock and socket behind; the next start still runs.
    ::kill(pid_t(x.app()->processId()), SIGKILL);
    ASSERT_TRUE(x.app()->waitForFinished(5000));
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed("OmbrixWidget Control Panel").isEmpty(); }, 5000));
    ASSERT_TRUE(x.startApp());
    EXPECT_FALSE(x.waitForWindow("OmbrixWidget Control Panel").isEmpty());
    EXPECT_EQ(x.app()->state(), QProcess::Running);
}

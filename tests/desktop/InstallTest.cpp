// `cmake --install` into a DESTDIR: the listed files, valid desktop entry and metainfo, and the
// installed program starting on its own with the build folder hidden.
#include "XSession.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace {

int runTool(const QString& program, const QStringList& args, const QProcessEnvironment& env, QString* output = nullptr)
{
    QProcess p;
    p.setProcessEnvironment(env);
    p.setProcessChannelMode(QProcess::MergedChannels);
    p.start(program, args);
    if (!p.waitForFinished(60000))
        return -1;
    if (output)
        *output = QString::fromUtf8(p.readAll());
    return p.exitCode();
}

} // namespace

TEST(Install, DestdirHoldsTheFilesAndTheInstalledProgramRunsAlone)
{
    QTemporaryDir dest;
    const QString build = QFileInfo(buildDir()).canonicalFilePath();
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("DESTDIR", dest.path());
    QString log;
    ASSERT_EQ(runTool("cmake", {"--install", build, "--prefix", "/usr"}, env, &log), 0) << log.toStdString();

    const QString id = "com.ombrixwidget.OmbrixWidget";
    const QString usr = dest.path() + "/usr";
    QStringList expected = {"bin/OmbrixWidget", "share/applications/" + id + ".desktop",
                            "share/metainfo/" + id + ".metainfo.xml",
                            "share/icons/hicolor/scalable/apps/" + id + ".svg"};
    for (int px : {16, 22, 24, 32, 48, 64, 128, 256})
        expected << QString("share/icons/hicolor/%1x%1/apps/%2.png").arg(px).arg(id);
    for (const QString& file : expected)
        EXPECT_TRUE(QFileInfo(usr + "/" + file).isFile()) << file.toStdString();
    EXPECT_TRUE(QFileInfo(usr + "/bin/OmbrixWidget").isExecutable());

    QString out;
    EXPECT_EQ(runTool("desktop-file-validate", {usr + "/share/applications/" + id + ".desktop"}, env, &out), 0);
    EXPECT_EQ(out, "") << out.toStdString();
    EXPECT_EQ(
        runTool("appstreamcli", {"validate", "--no-net", usr + "/share/metainfo/" + id + ".metainfo.xml"}, env, &out),
        0)
        << out.toStdString();

    // Started from its install prefix, in a mount namespace where the build folder is an empty
    // tmpfs: it must come up with nothing from there.
    XSession x;
    ASSERT_TRUE(x.ok());
    QProcess app;
    app.setProcessEnvironment(x.environment());
    app.setProcessChannelMode(QProcess::ForwardedChannels);
    app.setWorkingDirectory(x.home());
    app.start("unshare", {"--map-root-user", "--mount", "sh", "-c", "mount -t tmpfs none \"$1\" && exec \"$2\"", "sh",
                          build, usr + "/bin/OmbrixWidget"});
    ASSERT_TRUE(app.waitForStarted(5000));
    EXPECT_FALSE(x.waitForWindow("OmbrixWidget Control Panel").isEmpty());
    EXPECT_EQ(app.state(), QProcess::Running);
    app.terminate();
    app.waitForFinished(5000);
}

// Start at login from the Settings tab: a real click writes the XDG autostart entry, the entry
// starts the program, and the switch, read from the file, turns it off again.
#include "XSession.h"

#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QThread>
#include <gtest/gtest.h>

namespace {

// Places in the 420 by 600 panel, which opens at (510, 150) on the 1440x900 screen.
const QPoint kPanel(510, 150);
const QPoint kSettingsTab = kPanel + QPoint(180, 95);
const QPoint kLaunchSwitch = kPanel + QPoint(363, 325);

void click(XSession& x, QPoint p)
{
    x.run("xdotool", {"mousemove", QString::number(p.x()), QString::number(p.y()), "click", "1"});
}

QString readFile(const QString& path)
{
    QFile f(path);
    return f.open(QIODevice::ReadOnly) ? QString::fromUtf8(f.readAll()) : QString();
}

} // namespace

TEST(AutostartEndToEnd, SwitchWritesAnEntryThatStartsTheProgramAndRemovesIt)
{
    XSession x;
    ASSERT_TRUE(x.ok());
    // The entry follows $XDG_CONFIG_HOME, which the session points into its own HOME.
    const QString entry = x.home() + "/.config/autostart/com.ombrixwidget.OmbrixWidget.desktop";
    ASSERT_TRUE(x.startApp());
    ASSERT_FALSE(x.waitForWindow("OmbrixWidget Control Panel").isEmpty());
    QThread::msleep(500);
    click(x, kSettingsTab);
    QThread::msleep(400);
    click(x, kLaunchSwitch);
    ASSERT_TRUE(XSession::waitFor([&] { return QFile::exists(entry); }, 5000));
    QThread::msleep(300);
    x.grabScreen().save(artifactsDir() + "/autostart-on.png");

    const QString text = readFile(entry);
    const QString program = QFileInfo(buildDir() + "/OmbrixWidget").canonicalFilePath();
    for (const QString& line : {QString("[Desktop Entry]"), QString("Type=Application"), QString("Name=OmbrixWidget"),
                                "Exec=" + program, QString("X-GNOME-Autostart-enabled=true")})
        EXPECT_TRUE(text.split('\n').contains(line)) << line.toStdString() << "\n" << text.toStdString();

    // Quit, then start the program the way the entry says: it comes up with its panel.
    x.stopApp();
    ASSERT_TRUE(XSession::waitFor([&] { return x.windowsNamed("OmbrixWidget Control Panel").isEmpty(); }, 5000));
    const QString exec = QRegularExpression("^Exec=(.*)$", QRegularExpression::MultilineOption).match(text).captured(1);
    QProcess started;
    started.setProcessEnvironment(x.environment());
    started.start(exec, {});
    ASSERT_TRUE(started.waitForStarted(5000));
    ASSERT_FALSE(x.waitForWindow("OmbrixWidget Control Panel").isEmpty());

    // The switch shows what the file says, and a click on it removes the entry.
    QThread::msleep(500);
    click(x, kSettingsTab);
    QThread::msleep(400);
    click(x, kLaunchSwitch);
    EXPECT_TRUE(XSession::waitFor([&] { return !QFile::exists(entry); }, 5000));
    started.terminate();
    started.waitForFinished(5000);
}

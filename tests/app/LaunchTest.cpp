// The whole app in its own X session, looked at from outside the process.
#include "DefaultsSuite.h"
#include "SettingsManager.h"
#include "XSession.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <gtest/gtest.h>

namespace {

constexpr int kScreenHeight = 900;

// X geometry (top left, y down) back to app coordinates (bottom left, y up).
QRectF appFrame(const QRect& x)
{
    return QRectF(x.x(), kScreenHeight - (x.y() + x.height()), x.width(), x.height());
}

std::unique_ptr<DefaultsSuite> suiteOf(const XSession& x)
{
    return DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
}

QRectF frameOf(XSession& x, const QString& name)
{
    const QString id = x.waitForWindow("OmbrixWidget " + name);
    return id.isEmpty() ? QRectF() : appFrame(x.geometryOf(id));
}

} // namespace

TEST(Launch, EnabledWidgetsOpenAtTheirDefaultOrigins)
{
    XSession x;
    ASSERT_TRUE(x.ok());
    {
        auto suite = suiteOf(x);
        for (const char* name : {"clock", "weather", "battery", "music"})
            suite->setObject(true, QString("widget.%1.enabled").arg(name));
        suite->synchronize();
    }
    ASSERT_TRUE(x.startApp());
    const QList<std::pair<QString, QRectF>> expected = {
        {"clock", {1250, 690, 170, 170}},
        {"weather", {1250, 480, 170, 170}},
        {"battery", {1250, 270, 170, 170}},
        {"music", {1080, 40, 340, 170}},
    };
    for (const auto& [name, frame] : expected) {
        SCOPED_TRACE(name.toStdString());
        EXPECT_EQ(frameOf(x, name), frame);
    }
    x.grabScreen().save(artifactsDir() + "/launch-four-widgets.png");
    // Opening a window stores no position, and the start path writes each enabled key again.
    auto suite = suiteOf(x);
    EXPECT_FALSE(suite->dataForKey("widget.clock.position"));
    EXPECT_EQ(suite->boolForKey("widget.music.enabled"), true);
}

TEST(Launch, WidgetWindowsStayOutOfTheTaskbarOnEveryWorkspace)
{
    XSession x;
    ASSERT_TRUE(x.ok());
    {
        auto suite = suiteOf(x);
        suite->setObject(true, "widget.clock.enabled");
        suite->synchronize();
    }
    ASSERT_TRUE(x.startApp());
    ASSERT_FALSE(frameOf(x, "clock").isNull());
    const QString id = x.windowsNamed("OmbrixWidget clock").value(0);
    QString state;
    XSession::waitFor([&] {
        state = x.run("xprop", {"-id", id, "_NET_WM_STATE"});
        return state.contains("BELOW");
    });
    for (const char* atom : {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "_NET_WM_STATE_BELOW"})
        EXPECT_TRUE(state.contains(atom)) << atom << " in " << state.toStdString();
    // Every workspace: openbox records it as the desktop number 0xFFFFFFFF.
    EXPECT_TRUE(x.run("xprop", {"-id", id, "_NET_WM_DESKTOP"}).contains("4294967295"));
}

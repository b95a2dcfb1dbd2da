// A widget among ordinary windows on each window manager the app is used with: it stays below,
// never takes the focus, is on every desktop, skips taskbar and pager, and stores where it is
// dragged.
#include "DefaultsSuite.h"
#include "SettingsManager.h"
#include "SettingsRecords.h"
#include "XSession.h"

#include <QRegularExpression>
#include <QThread>
#include <gtest/gtest.h>

namespace {

// The child of the root that holds `id` (the manager's frame, or the window itself).
QString topLevelOf(const XSession& x, QString id)
{
    for (int depth = 0; depth < 8; ++depth) {
        const QString tree = x.run("xwininfo", {"-id", id, "-tree"});
        const QString root = QRegularExpression(R"(Root window id: (0x[0-9a-f]+))").match(tree).captured(1);
        const QString parent = QRegularExpression(R"(Parent window id: (0x[0-9a-f]+))").match(tree).captured(1);
        if (parent.isEmpty() || parent == root)
            return id;
        id = parent;
    }
    return {};
}

// Whether `upper` is stacked above `lower`: xwininfo lists the root's children top first.
bool isAbove(const XSession& x, const QString& upper, const QString& lower)
{
    const QString order = x.run("xwininfo", {"-root", "-children"});
    const auto indexOf = [&](const QString& id) {
        const QString hex = "0x" + QString::number(topLevelOf(x, id).toULongLong(nullptr, 0), 16);
        return order.indexOf(QRegularExpression("\\s" + hex + "\\s"));
    };
    const int u = indexOf(upper), l = indexOf(lower);
    return u >= 0 && l >= 0 && u < l;
}

QString hexId(const QString& id)
{
    return "0x" + QString::number(id.toULongLong(), 16);
}

QString activeWindow(const XSession& x)
{
    return QRegularExpression(R"(# (0x[0-9a-f]+))").match(x.run("xprop", {"-root", "_NET_ACTIVE_WINDOW"})).captured(1);
}

bool isViewable(const XSession& x, const QString& id)
{
    return x.run("xwininfo", {"-id", id}).contains("IsViewable");
}

class WindowManager : public ::testing::TestWithParam<std::string> {};

} // namespace

TEST_P(WindowManager, WidgetStaysBelowUnfocusedOnEveryDesktop)
{
    XSession x(XSessionOptions{.windowManager = QString::fromStdString(GetParam())});
    ASSERT_TRUE(x.ok());
    {
        auto suite = DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
        suite->setObject(true, "widget.clock.enabled");
        suite->synchronize();
    }
    x.run("xdotool", {"set_num_desktops", "2"});
    ASSERT_TRUE(x.startApp());
    const QString widget = x.waitForWindow("OmbrixWidget clock");
    ASSERT_FALSE(widget.isEmpty());
    ASSERT_EQ(x.geometryOf(widget), QRect(1250, 40, 170, 170));

    // An ordinary window over the widget's lower part, made active by a click as a user would.
    QProcess normal;
    normal.setProcessEnvironment(x.environment());
    normal.start("xmessage", {"-geometry", "400x300+1100+100", "ordinary window"});
    QString other;
    ASSERT_TRUE(XSession::waitFor([&] {
        other = x.run("xdotool", {"search", "--onlyvisible", "--class", "xmessage"})
                    .split('\n', Qt::SkipEmptyParts)
                    .value(0);
        return !other.isEmpty();
    }));
    // Clicked until the manager has it in place and focused.
    ASSERT_TRUE(XSession::waitFor(
        [&] {
            x.run("xdotool", {"mousemove", "1200", "350", "click", "1"});
            return XSession::waitFor([&] { return activeWindow(x) == hexId(other); }, 500);
        },
        10000))
        << x.run("xprop", {"-root", "_NET_ACTIVE_WINDOW", "_NET_CLIENT_LIST"}).toStdString() << other.toStdString()
        << x.run("xwininfo", {"-id", other}).toStdString();
    EXPECT_TRUE(isAbove(x, other, widget));

    // A click on the widget's uncovered top, then a drag of it.
    x.run("xdotool", {"mousemove", "1330", "70", "click", "1"});
    QThread::msleep(600);
    EXPECT_TRUE(isAbove(x, other, widget)) << "after a click";
    EXPECT_EQ(activeWindow(x), hexId(other)) << "after a click";
    x.run("xdotool", {"mousemove", "1330", "70",        "mousedown", "1",       "mousemove", "1325", "72",
                      "sleep",     "0.1",  "mousemove", "1300",      "80",      "sleep",     "0.1",  "mousemove",
                      "1250",      "90",   "sleep",     "0.2",       "mouseup", "1"});
    // The window follows the hand (a managed move starts a few pixels late), and the move's end went
    // through snapping into the store, in app coordinates (y up, 900 high).
    QRect moved;
    EXPECT_TRUE(XSession::waitFor([&] { return (moved = x.geometryOf(widget)).x() <= 1180; }, 5000)) << moved.x();
    EXPECT_TRUE(XSession::waitFor(
        [&] {
            const auto data =
                DefaultsSuite::open(SettingsManager::suiteName, x.configDir())->dataForKey("widget.clock.position");
            const auto stored = data ? Position::fromJson(*data) : std::nullopt;
            moved = x.geometryOf(widget);
            return stored && stored->x == moved.x() && stored->y == 900 - moved.bottom() - 1;
        },
        5000));
    x.grabScreen().save(artifactsDir() + "/wm-" + QString::fromStdString(GetParam()) + ".png");
    EXPECT_TRUE(isAbove(x, other, widget)) << "after a drag";
    EXPECT_EQ(activeWindow(x), hexId(other)) << "after a drag";

    const QString props = x.run("xprop", {"-id", widget, "_NET_WM_STATE", "_NET_WM_DESKTOP"});
    EXPECT_TRUE(props.contains("_NET_WM_STATE_SKIP_TASKBAR")) << props.toStdString();
    EXPECT_TRUE(props.contains("_NET_WM_STATE_SKIP_PAGER")) << props.toStdString();
    EXPECT_TRUE(props.contains("_NET_WM_DESKTOP(CARDINAL) = 4294967295")) << props.toStdString();

    // On the second desktop the ordinary window is gone and the widget is still there.
    if (GetParam() == "i3")
        x.run("i3-msg", {"workspace", "2"});
    else
        x.run("xdotool", {"set_desktop", "1"});
    EXPECT_TRUE(XSession::waitFor([&] { return !isViewable(x, other); }, 5000));
    EXPECT_TRUE(isViewable(x, widget));
    normal.kill();
    normal.waitForFinished(2000);
}

INSTANTIATE_TEST_SUITE_P(Matrix, WindowManager, ::testing::Values("openbox", "fluxbox", "xfwm4", "i3", "kwin_x11"),
                         [](const auto& info) { return info.param; });

// A widget among ordinary windows on each window manager the app is used with: it stays below, never
// takes the focus, is on every desktop, skips taskbar and pager, and stores where it is dragged.
#include "XSession.h"

#include <QRegularExpression>
#include <gtest/gtest.h>

namespace {

QString capture(const QString& text, const char* pattern)
{
    return QRegularExpression(pattern).match(text).captured(1);
}

// The child of the root that holds `id` (the manager's frame, or the window itself), as 0x hex.
QString topLevelOf(const XSession& x, QString id)
{
    for (int depth = 0; depth < 8; ++depth) {
        const QString tree = x.run("xwininfo", {"-id", id, "-tree"});
        const QString parent = capture(tree, R"(Parent window id: (0x[0-9a-f]+))");
        if (parent.isEmpty() || parent == capture(tree, R"(Root window id: (0x[0-9a-f]+))"))
            return "0x" + QString::number(id.toULongLong(nullptr, 0), 16);
        id = parent;
    }
    return {};
}

// xwininfo lists the root's children top first.
bool isAbove(const XSession& x, const QString& upper, const QString& lower)
{
    const QString order = x.run("xwininfo", {"-root", "-children"});
    const int u = order.indexOf(QRegularExpression("\\s" + topLevelOf(x, upper) + "\\s"));
    const int l = order.indexOf(QRegularExpression("\\s" + topLevelOf(x, lower) + "\\s"));
    return u >= 0 && l >= 0 && u < l;
}

QString activeWindow(const XSession& x)
{
    return capture(x.run("xprop", {"-root", "_NET_ACTIVE_WINDOW"}), R"(# (0x[0-9a-f]+))");
}

class WindowManager : public ::testing::TestWithParam<std::string> {};

} // namespace

TEST_P(WindowManager, TheWidgetStaysBelowUnfocusedOnEveryDesktopAndStoresWhereItIsDragged)
{
    XSession x(XSessionOptions{.windowManager = QString::fromStdString(GetParam())});
    ASSERT_TRUE(x.ok());
    x.enable({"clock"});
    x.run("xdotool", {"set_num_desktops", "2"});
    ASSERT_TRUE(x.startApp());
    const QString widget = x.widget("clock");
    ASSERT_EQ(x.geometryOf(widget), QRect(1250, 40, 170, 170));

    // An ordinary window over the widget's lower part, clicked until the manager has it focused.
    QProcess normal;
    normal.setProcessEnvironment(x.environment());
    normal.start("xmessage", {"-geometry", "400x300+1100+100", "ordinary window"});
    QString other;
    const auto hex = [](const QString& id) { return "0x" + QString::number(id.toULongLong(), 16); };
    ASSERT_TRUE(XSession::waitFor([&] {
        other = x.run("xdotool", {"search", "--onlyvisible", "--class", "xmessage"}).section('\n', 0, 0);
        x.click({1200, 350});
        return !other.isEmpty() && XSession::waitFor([&] { return activeWindow(x) == hex(other); }, 1000);
    }));
    // A click on the widget's uncovered top, then a drag of it: the window follows the hand, and
    // the end of the move is stored in app coordinates.
    x.click({1330, 70});
    EXPECT_TRUE(x.drag(widget, {1330, 70}, {1250, 90}));
    EXPECT_TRUE(XSession::waitFor([&] {
        const auto stored = x.storedPosition("clock");
        return stored && QPointF(stored->x, stored->y) == x.originOf(widget) && stored->x <= 1180;
    })) << x.originOf(widget).x();
    x.grabScreen().save(artifactsDir() + "/wm-" + QString::fromStdString(GetParam()) + ".png");
    EXPECT_TRUE(isAbove(x, other, widget));
    EXPECT_EQ(activeWindow(x), hex(other));
    const QString props = x.run("xprop", {"-id", widget, "_NET_WM_STATE", "_NET_WM_DESKTOP"});
    for (const char* p : {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "= 4294967295"})
        EXPECT_TRUE(props.contains(p)) << p << " in " << props.toStdString();

    // On the second desktop the ordinary window is gone and the widget is still there.
    if (GetParam() == "i3")
        x.run("i3-msg", {"workspace", "2"});
    else
        x.run("xdotool", {"set_desktop", "1"});
    const auto viewable = [&](const QString& id) { return x.run("xwininfo", {"-id", id}).contains("IsViewable"); };
    EXPECT_TRUE(XSession::waitFor([&] { return !viewable(other); }));
    EXPECT_TRUE(viewable(widget));
    normal.kill();
    normal.waitForFinished(2000);
}

INSTANTIATE_TEST_SUITE_P(Matrix, WindowManager, ::testing::Values("openbox", "fluxbox", "xfwm4", "i3", "kwin_x11"),
                         [](const auto& info) { return info.param; });

// A widget on each window manager the app is used with (GNOME's mutter also as the Wayland
// compositor, the widget through XWayland), with and without a compositor, seen from
// outside: frosted glass over the wallpaper that follows it, below ordinary windows, never focused, on
// every desktop, off taskbar and pager, and stored where it is dragged.
#include "XSession.h"

#include <QPainter>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

namespace {

int distance(QRgb a, QRgb b)
{
    return std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b));
}

// An empty stretch of glass: the left margin, clear of the corners and the face.
QImage margin(const QImage& screen, const QRect& w)
{
    return screen.copy(w.x() + 5, w.y() + 60, 8, 50); // 8 px: grey rows without padding
}

struct Desktop {
    const char *windowManager, *compositor, *theme;
};

// ctest lists each row by this.
void PrintTo(const Desktop& d, std::ostream* out)
{
    *out << d.windowManager << (*d.compositor ? "+" : "") << d.compositor << " " << d.theme;
}

class WindowManager : public ::testing::TestWithParam<Desktop> {};

} // namespace

TEST_P(WindowManager, FrostedGlassBelowUnfocusedOnEveryDesktopAndStoredWhereDragged)
{
    const Desktop& d = GetParam();
    const bool composited = *d.compositor || QString(d.windowManager).startsWith("mutter");
    const bool wayland = QString(d.windowManager) == "mutter-wayland";
    XSession x(XSessionOptions{.compositor = QString(d.compositor).split(' ', Qt::SkipEmptyParts),
                               .windowManager = d.windowManager});
    ASSERT_TRUE(x.ok());
    // Black and white columns 8 px wide: as much contrast as a wallpaper can have; then an orange sky.
    QImage stripes(1440, 900, QImage::Format_RGB32), sky(1440, 900, QImage::Format_RGB32);
    for (int col = 0; col < 1440; ++col)
        QPainter(&stripes).fillRect(col, 0, 1, 900, (col / 8) % 2 ? Qt::white : Qt::black);
    sky.fill(QColor(250, 150, 50));
    const auto setWallpaper = [&](const QImage& image) {
        image.save(x.home() + "/wallpaper.png");
        x.run("feh", {"--no-fehbg", "--bg-fill", x.home() + "/wallpaper.png"});
    };
    setWallpaper(stripes);
    x.enable({"clock", "weather"});
    auto suite = x.settings();
    suite->setObject(QString(d.theme), "glass-theme");
    suite->setObject(true, "widget.weather.clickThrough");
    suite->synchronize();
    x.run("xdotool", {"set_num_desktops", "2"});
    ASSERT_TRUE(x.startApp());
    const QString widget = x.widget("clock");
    const QRect w = x.geometryOf(widget);
    ASSERT_EQ(w, QRect(1250, 40, 170, 170));
    // Click-through from the start: the pointer over the widget is over what lies below (the root,
    // or mutter's guard window), not over the widget nor a frame the manager put around it.
    const QString through = x.widget("weather");
    const QPoint middle = x.geometryOf(through).center();
    EXPECT_TRUE(XSession::waitFor([&] {
        const QString at = x.run(
            "xdotool", {"mousemove", QString::number(middle.x()), QString::number(middle.y()), "getmouselocation"});
        const QString tree = x.run("xwininfo", {"-tree", "-id", at.section("window:", 1).trimmed()});
        return tree.section('\n', 1, 1).contains("(the root window)") ||
               !tree.contains("0x" + QString::number(through.toULongLong(), 16));
    }));
    // Fixed size: the manager offers no resize and no maximize.
    const QString hints = x.run("xprop", {"-id", widget, "WM_NORMAL_HINTS", "_NET_WM_ALLOWED_ACTIONS"});
    EXPECT_TRUE(hints.contains("minimum size: 170 by 170") && hints.contains("maximum size: 170 by 170"));
    for (const char* action : {"_NET_WM_ACTION_RESIZE", "_NET_WM_ACTION_MAXIMIZE"})
        EXPECT_FALSE(hints.contains(action)) << action;

    // Frosted, at most a sixteenth of the stripes' range shows. Without a compositor the glass is
    // opaque: there its corners show the wallpaper as it is around the window, rounded and blended.
    QImage screen;
    const auto wallpaperAt = [&](QPoint p) { return distance(screen.pixel(p), stripes.pixel(p)) <= 6; };
    const auto cornersShowWallpaper = [&] {
        QSet<QRgb> arc;
        for (int i = 0; i <= 24; ++i)
            arc << screen.pixel(
                w.topLeft() + QPointF(28 - 25 * std::cos(M_PI / 48 * i), 28 - 25 * std::sin(M_PI / 48 * i)).toPoint());
        return wallpaperAt(w.topLeft() + QPoint(1, 1)) && wallpaperAt(w.bottomRight() - QPoint(1, 1)) && arc.size() > 2;
    };
    EXPECT_TRUE(XSession::waitFor([&] {
        screen = x.grabScreen();
        if (screen.isNull())
            return false;
        const QImage glass = margin(screen, w).convertToFormat(QImage::Format_Grayscale8);
        const auto [lo, hi] = std::minmax_element(glass.constBits(), glass.constBits() + glass.sizeInBytes());
        return *hi - *lo <= 255 / 16 && (composited || cornersShowWallpaper());
    }));
    // A new wallpaper shows through the glass. (On Wayland the shell draws the desktop, not the root.)
    const auto mean = [&] {
        return margin(screen, w).scaled(1, 1, Qt::IgnoreAspectRatio, Qt::SmoothTransformation).pixel(0, 0);
    };
    const QRgb before = mean();
    setWallpaper(sky);
    EXPECT_TRUE(wayland || XSession::waitFor([&] {
                    screen = x.grabScreen();
                    return !screen.isNull() && distance(mean(), before) >= 12;
                }));

    // An ordinary window over the widget's lower part, clicked until the manager has it focused.
    QProcess normal;
    normal.setProcessEnvironment(x.environment());
    normal.start("xmessage", {"-geometry", "400x300+1100+100", "ordinary window"});
    QString other;
    const auto hex = [](const QString& id) { return "0x" + QString::number(id.toULongLong(), 16); };
    const auto active = [&] {
        return QRegularExpression(R"(# (0x[0-9a-f]+))")
            .match(x.run("xprop", {"-root", "_NET_ACTIVE_WINDOW"}))
            .captured(1);
    };
    ASSERT_TRUE(XSession::waitFor([&] {
        other = x.run("xdotool", {"search", "--onlyvisible", "--class", "xmessage"}).section('\n', 0, 0);
        x.click({1200, 350});
        return !other.isEmpty() && XSession::waitFor([&] { return active() == hex(other); }, 1000);
    }));
    // A click on the widget's uncovered top, then a drag of it: the window follows the hand, and
    // the end of the move is stored in app coordinates (on Wayland too, where XWayland never hears
    // of the release that ends the compositor's move).
    x.click({1330, 70});
    EXPECT_TRUE(x.drag(widget, {1330, 70}, {1250, 90}));
    EXPECT_TRUE(XSession::waitFor([&] {
        const auto stored = x.storedPosition("clock");
        return stored && *stored == x.originOf(widget) && stored->x <= 1180;
    })) << x.originOf(widget).x;
    x.grabScreen().save(artifactsDir() + QString("/desktop-%1-%2-%3.png").arg(d.windowManager, d.compositor, d.theme));
    // xwininfo lists the root's tree top first, each window before its children (a manager's frame
    // before the window in it).
    const QString tree = x.run("xwininfo", {"-root", "-tree"});
    const auto place = [&](const QString& id) { return tree.indexOf(QRegularExpression("\\s" + hex(id) + "\\s")); };
    EXPECT_TRUE(place(other) >= 0 && place(widget) > place(other));
    EXPECT_EQ(active(), hex(other));
    const QString props = x.run("xprop", {"-id", widget, "_NET_WM_STATE", "_NET_WM_DESKTOP"});
    for (const char* p : {"_NET_WM_STATE_SKIP_TASKBAR", "_NET_WM_STATE_SKIP_PAGER", "= 4294967295"})
        EXPECT_TRUE(props.contains(p)) << p << " in " << props.toStdString();

    // "Show desktop" leaves the widget on the desktop, wherever the manager has the action.
    if (QString(d.windowManager) != "i3") {
        const bool fluxbox = QString(d.windowManager) == "fluxbox";
        fluxbox ? x.run("fluxbox-remote", {"ShowDesktop"}) : x.run("wmctrl", {"-k", "on"});
        const auto viewable = [&](const QString& id) {
            return x.run("xwininfo", {"-id", id}).contains("Map State: IsViewable");
        };
        XSession::waitFor([&] { return !viewable(other); }, 3000); // KWin keeps windows mapped
        EXPECT_TRUE(XSession::waitFor([&] { return viewable(widget); }));
        x.grabScreen().save(artifactsDir() + QString("/desktop-%1-shown.png").arg(d.windowManager));
        x.run("wmctrl", {"-k", "off"});
    }
    normal.kill();
    normal.waitForFinished(2000);
}

INSTANTIATE_TEST_SUITE_P(Matrix, WindowManager,
                         ::testing::Values(Desktop{"openbox", "", "transparent"}, Desktop{"i3", "", "opaque"},
                                           Desktop{"fluxbox", "xcompmgr", "transparent"},
                                           Desktop{"xfwm4", "xcompmgr", "opaque"},
                                           Desktop{"kwin_x11", "picom", "transparent"}, Desktop{"mutter", "", "opaque"},
                                           Desktop{"mutter-wayland", "", "transparent"}),
                         [](const auto& info) { return QString(info.param.windowManager).remove('-').toStdString(); });

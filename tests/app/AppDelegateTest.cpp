// The registry driven in-process on the test display; X state read back with X tools.
#include "AppDelegate.h"
#include "Screen.h"
#include "SettingsManager.h"
#include "Snapping.h"
#include "WeatherFixtures.h"
#include "WidgetHostingView.h"
#include "WidgetWindow.h"
#include "XSession.h"

#include <QMouseEvent>
#include <QPointer>
#include <QProcess>
#include <QQuickWindow>
#include <QRasterWindow>
#include <QRegularExpression>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
#include <gtest/gtest.h>
#include <random>

namespace {

QString tool(const QString& program, const QStringList& args)
{
    QProcess p;
    p.start(program, args);
    p.waitForFinished(10000);
    return QString::fromUtf8(p.readAllStandardOutput());
}

// The window's origin in app coordinates as the X server has it.
std::optional<Position> xOrigin(QWindow* w)
{
    const QString out = tool("xwininfo", {"-id", QString::number(w->winId())});
    const QRegularExpression rx(
        R"(Absolute upper-left X:\s+(-?\d+)[\s\S]*Absolute upper-left Y:\s+(-?\d+)[\s\S]*Height:\s+(\d+))");
    const auto m = rx.match(out);
    if (!m.hasMatch())
        return std::nullopt;
    return Position{m.captured(1).toDouble(),
                    screen::primaryHeight() - (m.captured(2).toDouble() + m.captured(3).toDouble())};
}

// Widgets in the registry's walk order, each with its frame; one of them is dropped somewhere.
struct Arrangement {
    QMap<QString, Rect> frames;
    QString moved;
    Rect drop;

    std::vector<Rect> others() const
    {
        std::vector<Rect> r;
        for (auto it = frames.cbegin(); it != frames.cend(); ++it)
            if (it.key() != moved)
                r.push_back(it.value());
        return r;
    }
};

// Random arrangements of two to four widgets, the moved one dropped within 14 of other widgets'
// edge lines. Half are the rare ones that a second pass of the rules would move again. Every
// frame, dropped and snapped, stays on screen, where the window manager leaves it alone.
std::vector<Arrangement> arrangements(size_t count)
{
    const Rect V{0, 0, 1440, 900};
    std::mt19937 rng(15);
    const auto uniform = [&](int lo, int hi) { return double(std::uniform_int_distribution<int>(lo, hi)(rng)); };
    const auto onScreen = [&](const Rect& r) {
        return r.x >= 0 && r.y >= 0 && r.maxX() <= V.maxX() && r.maxY() <= V.maxY();
    };
    const QStringList names{"battery", "clock", "music", "weather"};
    std::vector<Arrangement> again, once;
    for (int tries = 0; tries < 5'000'000 && again.size() + once.size() < count; ++tries) {
        Arrangement a;
        const int n = int(uniform(2, 4));
        for (int i = 0; i < n; ++i) {
            const double w = uniform(0, 1) ? 340 : 170;
            a.frames[names[i]] = Rect{uniform(0, int(V.width - w)), uniform(0, int(V.height - 170)), w, 170};
        }
        a.moved = names[int(uniform(0, n - 1))];
        const Rect ox = a.frames[names[int(uniform(0, n - 1))]];
        const Rect oy = a.frames[names[int(uniform(0, n - 1))]];
        a.drop = a.frames[a.moved];
        const double xs[] = {ox.minX(), ox.maxX() - a.drop.width, ox.maxX(), ox.minX() - a.drop.width};
        const double ys[] = {oy.minY(), oy.maxY() - a.drop.height, oy.maxY(), oy.minY() - a.drop.height};
        a.drop.x = xs[int(uniform(0, 3))] + uniform(-14, 14);
        a.drop.y = ys[int(uniform(0, 3))] + uniform(-14, 14);
        const Rect first = snapping::snap(a.drop, V, a.others());
        if (!onScreen(a.drop) || !onScreen(first) || a.drop == a.frames[a.moved])
            continue;
        const bool movesAgain = snapping::snap(first, V, a.others()) != first;
        auto& bucket = movesAgain ? again : once;
        if (bucket.size() < (movesAgain ? count / 2 : count - count / 2))
            bucket.push_back(a);
    }
    again.insert(again.end(), once.begin(), once.end());
    return again;
}

class Registry : public ::testing::Test {
  protected:
    void SetUp() override
    {
        if (qEnvironmentVariableIsEmpty("DISPLAY"))
            GTEST_SKIP() << "needs an X display";
        auto& s = SettingsManager::shared();
        for (const QString name : {"clock", "weather", "battery", "music"}) {
            s.setPosition(std::nullopt, name);
            s.saveSetting(false, "widget." + name + ".clickThrough");
        }
        s.loadSettings();
    }
    SettingsManager& settings() { return SettingsManager::shared(); }
    AppDelegate app;
};

} // namespace

TEST_F(Registry, ToggleTwiceMakesOneWindowAndOffRemovesIt)
{
    app.toggleWidget("clock", true);
    WidgetWindow* first = app.widgetWindows().value("clock");
    ASSERT_TRUE(first);
    app.toggleWidget("clock", true);
    EXPECT_EQ(app.widgetWindows().size(), 1);
    EXPECT_EQ(app.widgetWindows().value("clock"), first);
    settings().loadSettings();
    EXPECT_TRUE(settings().clockEnabled());
    app.toggleWidget("clock", false);
    EXPECT_TRUE(app.widgetWindows().isEmpty());
    settings().loadSettings();
    EXPECT_FALSE(settings().clockEnabled());
    // An unknown name stores its key and opens nothing.
    app.toggleWidget("calendar", true);
    EXPECT_TRUE(app.widgetWindows().isEmpty());
}

TEST_F(Registry, SwitchedOffWidgetsLeaveNothingBehind)
{
    // A weather service that takes every request and never answers: each weather view leaves one
    // request in flight when it is switched off.
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    QList<QPointer<QTcpSocket>> connections;
    QObject::connect(&silent, &QTcpServer::newConnection, [&] {
        while (QTcpSocket* c = silent.nextPendingConnection())
            connections << c;
    });
    pointWeatherServicesAt(QString("http://127.0.0.1:%1").arg(silent.serverPort()));

    QList<QPointer<QObject>> made;
    for (int cycle = 0; cycle < 25; ++cycle) {
        for (const QString name : {"clock", "weather", "battery", "music"}) {
            app.toggleWidget(name, true);
            WidgetWindow* w = app.widgetWindows().value(name);
            ASSERT_TRUE(w && w->contentView()->rootView());
            QCoreApplication::processEvents();
            QQuickItem* root = w->contentView()->rootView();
            made << w << w->contentView() << root;
            for (QObject* o : root->findChildren<QObject*>())
                made << o;
            app.toggleWidget(name, false);
        }
    }
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(std::count_if(made.cbegin(), made.cend(), [](const auto& p) { return !p.isNull(); }), 0);
    EXPECT_GE(made.size(), 25 * 4 * 3); // window, hosting view, view tree and what it made
    // Every request in flight went with its view: the server sees each connection closed.
    EXPECT_TRUE(QTest::qWaitFor(
        [&] {
            return !connections.isEmpty() && std::all_of(connections.cbegin(), connections.cend(), [](const auto& c) {
                return c->state() == QAbstractSocket::UnconnectedState;
            });
        },
        10000))
        << connections.size() << " connections";
    pointWeatherServicesAt("");
}

TEST_F(Registry, ResizeKeepsRightAndBottomEdgesAndStoresTheOrigin)
{
    settings().setPosition(Position{500, 300}, "weather");
    app.toggleWidget("weather", true);
    WidgetWindow* w = app.widgetWindows().value("weather");
    ASSERT_TRUE(w);
    ASSERT_TRUE(XSession::waitFor([&] { return xOrigin(w) == Position{500, 300}; }));
    app.resizeWidget("weather", "medium");
    EXPECT_EQ(w->frame(), (Rect{330, 300, 340, 170}));
    EXPECT_EQ(w->contentView()->frame(), (Rect{0, 0, 340, 170}));
    EXPECT_EQ(settings().weatherPosition(), (Position{330, 300}));
    // Settled: the stored origin is the real one, read from outside.
    EXPECT_TRUE(XSession::waitFor([&] { return xOrigin(w) == settings().weatherPosition(); }));
    app.resizeWidget("weather", "small");
    EXPECT_EQ(w->frame(), (Rect{500, 300, 170, 170}));
    EXPECT_TRUE(XSession::waitFor([&] { return xOrigin(w) == Position{500, 300}; }));
    EXPECT_EQ(settings().weatherPosition(), (Position{500, 300}));
    // Nothing is stored for a widget that is not live.
    app.resizeWidget("battery", "medium");
    EXPECT_FALSE(settings().batteryPosition());
    app.toggleWidget("weather", false);
}

TEST_F(Registry, AMoveIsSnappedOnceAndStoredOnceAsTheWindowEnds)
{
    const Rect V = screen::visibleFrame();
    ASSERT_EQ(V, (Rect{0, 0, 1440, 900}));
    const auto cases = arrangements(12);
    ASSERT_EQ(cases.size(), 12u);
    for (const Arrangement& a : cases) {
        SCOPED_TRACE((a.moved + " dropped at " + QString::number(a.drop.x) + "," + QString::number(a.drop.y) +
                      " among " + QString::number(a.frames.size()))
                         .toStdString());
        for (auto it = a.frames.cbegin(); it != a.frames.cend(); ++it) {
            settings().setProperty((it.key() + "Size").toLatin1(), it->width == 340 ? "medium" : "small");
            settings().setPosition(Position{it->x, it->y}, it.key());
            app.toggleWidget(it.key(), true);
        }
        ASSERT_TRUE(XSession::waitFor([&] {
            for (auto it = a.frames.cbegin(); it != a.frames.cend(); ++it) {
                WidgetWindow* w = app.widgetWindows().value(it.key());
                if (!w->isExposed() || xOrigin(w) != Position{it->x, it->y})
                    return false;
            }
            return true;
        }));
        int stores = 0;
        const auto counting = QObject::connect(&settings(), &SettingsManager::positionChanged,
                                               [&](const QString& name) { stores += name == a.moved; });
        // Moved by the window manager, as at the end of a drag: the app learns of it only from X.
        WidgetWindow* w = app.widgetWindows().value(a.moved);
        tool("xdotool", {"windowmove", QString::number(w->winId()), QString::number(a.drop.x),
                         QString::number(V.maxY() - a.drop.maxY())});
        const Rect snapped = snapping::snap(a.drop, V, a.others());
        const Position once{snapped.x, snapped.y};
        EXPECT_TRUE(XSession::waitFor([&] { return stores > 0 && xOrigin(w) == once; }, 5000));
        // The window system's report of the snap comes within this; a second pass would follow it.
        QTest::qWait(300);
        EXPECT_EQ(stores, 1);
        EXPECT_EQ(app.getSavedPosition(a.moved), once);
        EXPECT_EQ(xOrigin(w), once);
        EXPECT_EQ(w->frame(), snapped);
        QObject::disconnect(counting);
        for (const QString& name : a.frames.keys())
            app.toggleWidget(name, false);
    }
}

TEST_F(Registry, NeitherTheStartNorAResizeNextToANeighbourStoresAnyOriginButTheResizes)
{
    // Off every screen: the window manager shows it where it can, and nothing rewrites it.
    settings().setPosition(Position{3000, 2000}, "battery");
    settings().setPosition(Position{155, 500}, "weather");
    settings().setPosition(Position{500, 300}, "clock");
    int stores = 0;
    QObject::connect(&settings(), &SettingsManager::positionChanged, &app, [&] { ++stores; });
    for (const QString name : {"battery", "weather", "clock"})
        app.toggleWidget(name, true);
    WidgetWindow* clock = app.widgetWindows().value("clock");
    WidgetWindow* battery = app.widgetWindows().value("battery");
    ASSERT_TRUE(XSession::waitFor([&] { return battery->isExposed() && xOrigin(clock) == Position{500, 300}; }));
    QTest::qWait(300);
    EXPECT_EQ(stores, 0);
    EXPECT_EQ(settings().batteryPosition(), (Position{3000, 2000}));

    // Grown to medium the clock's left edge, 330, comes 5 from the weather's right edge: its move
    // snaps it there, and the origin the resize works out is still the one stored.
    app.resizeWidget("clock", "medium");
    EXPECT_EQ(settings().clockPosition(), (Position{330, 300}));
    EXPECT_TRUE(XSession::waitFor([&] { return xOrigin(clock) == Position{325, 300}; }));
    QTest::qWait(300);
    EXPECT_EQ(settings().clockPosition(), (Position{330, 300}));
}

TEST_F(Registry, MoveToTheSamePlaceStoresWithoutAFrameChange)
{
    settings().setPosition(Position{600, 400}, "clock");
    app.toggleWidget("clock", true);
    WidgetWindow* w = app.widgetWindows().value("clock");
    ASSERT_TRUE(XSession::waitFor([&] { return xOrigin(w) == Position{600, 400}; }));
    settings().setPosition(std::nullopt, "clock");
    int moves = 0;
    QObject::connect(w, &QWindow::xChanged, [&] { ++moves; });
    app.windowDidMove(w);
    EXPECT_EQ(settings().clockPosition(), (Position{600, 400}));
    EXPECT_EQ(moves, 0);
    // A sender that is not a live widget window changes nothing.
    settings().setPosition(std::nullopt, "clock");
    QQuickWindow stranger;
    app.windowDidMove(&stranger);
    app.windowDidMove(nullptr);
    EXPECT_FALSE(settings().clockPosition());
    app.toggleWidget("clock", false);
}

TEST_F(Registry, ClickThroughLetsARealClickReachTheWindowBelow)
{
    // An ordinary window under the widget counts the presses it gets.
    struct Below : QRasterWindow {
        int presses = 0;
        void mousePressEvent(QMouseEvent*) override { ++presses; }
    } below;
    // It shares the widgets' layer under ordinary windows and is mapped first, so the widget
    // stands above it.
    below.setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint);
    below.setGeometry(QRect(200, 200, 400, 400));
    below.show();
    ASSERT_TRUE(XSession::waitFor([&] { return below.isExposed(); }));

    settings().setPosition(Position{300, 900 - 300 - 170}, "battery"); // X top-left at (300, 300)
    app.toggleWidget("battery", true);
    WidgetWindow* w = app.widgetWindows().value("battery");
    ASSERT_TRUE(w);
    ASSERT_TRUE(XSession::waitFor([&] { return w->isExposed() && xOrigin(w) == Position{300, 430}; }));
    const auto click = [] { tool("xdotool", {"mousemove", "385", "385", "click", "1"}); };

    click();
    QTest::qWait(300);
    const int withoutClickThrough = below.presses;
    app.updateClickThrough("battery", true);
    EXPECT_TRUE(w->ignoresMouseEvents());
    EXPECT_FALSE(w->isMovableByWindowBackground());
    QTest::qWait(200);
    click();
    EXPECT_TRUE(XSession::waitFor([&] { return below.presses == withoutClickThrough + 1; }, 3000));
    EXPECT_EQ(withoutClickThrough, 0);
    settings().loadSettings();
    EXPECT_TRUE(settings().batteryClickThrough());

    // Off and on again, the widget comes back click-through.
    app.toggleWidget("battery", false);
    app.toggleWidget("battery", true);
    EXPECT_TRUE(app.widgetWindows().value("battery")->ignoresMouseEvents());
    EXPECT_TRUE(app.widgetWindows().value("battery")->flags() & Qt::WindowTransparentForInput);
    app.updateClickThrough("battery", false);
    EXPECT_FALSE(app.widgetWindows().value("battery")->flags() & Qt::WindowTransparentForInput);
    app.toggleWidget("battery", false);
}

TEST_F(Registry, ShowingThePanelAgainKeepsItsWindowTabAndState)
{
    app.createControlPanelWindow();
    QQuickWindow* panel = app.controlPanelWindow();
    ASSERT_TRUE(panel);
    EXPECT_EQ(panel->geometry(), QRect(510, 150, 420, 600)); // centred in the 1440x900 visible frame
    EXPECT_EQ(panel->title(), "OmbrixWidget Control Panel");
    EXPECT_FALSE(panel->isVisible()); // made, not shown
    app.showControlPanel();
    ASSERT_TRUE(XSession::waitFor([&] { return panel->isExposed(); }));
    auto* root = panel->contentItem()->childItems().value(0);
    ASSERT_TRUE(root);
    auto* model = root->property("model").value<QObject*>();
    ASSERT_TRUE(model);
    model->setProperty("activeTab", "settings");
    model->setProperty("manualCity", "Bari");
    panel->close(); // its own close only hides it
    ASSERT_TRUE(XSession::waitFor([&] { return !panel->isVisible(); }));
    app.showControlPanel();
    EXPECT_EQ(app.controlPanelWindow(), panel);
    EXPECT_TRUE(XSession::waitFor([&] { return panel->isExposed(); }));
    EXPECT_EQ(model->property("activeTab").toString(), "settings");
    EXPECT_EQ(model->property("manualCity").toString(), "Bari");
    // The callbacks reach the registry: switching the clock on from the panel opens its window.
    QMetaObject::invokeMethod(model, "setWidgetEnabled", Q_ARG(QString, "clock"), Q_ARG(bool, true));
    EXPECT_TRUE(app.widgetWindows().contains("clock"));
    QMetaObject::invokeMethod(model, "setWidgetEnabled", Q_ARG(QString, "clock"), Q_ARG(bool, false));
    EXPECT_FALSE(app.widgetWindows().contains("clock"));
}

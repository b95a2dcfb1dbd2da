// The widget registry in-process on the run's display, its windows read back with X tools.
#include "AppDelegate.h"
#include "SettingsManager.h"
#include "WeatherFixtures.h"
#include "WidgetHostingView.h"
#include "WidgetTable.h"
#include "WidgetWindow.h"
#include "XSession.h"

#include <QPointer>
#include <QRasterWindow>
#include <QTcpServer>
#include <QTcpSocket>
#include <gtest/gtest.h>

namespace {

const QStringList kWidgets{"clock", "weather", "battery", "music"};

class Registry : public ::testing::Test {
  protected:
    void SetUp() override
    {
        for (const QString& name : kWidgets) {
            settings().setPosition(std::nullopt, name);
            settings().setProperty((name + "Size").toLatin1(), "small");
            settings().saveSetting(false, "widget." + name + ".clickThrough");
        }
        settings().loadSettings();
    }
    // Opens the widgets at app-coordinate origins and waits until X has them there.
    void open(const QMap<QString, Position>& at)
    {
        for (auto it = at.cbegin(); it != at.cend(); ++it) {
            settings().setPosition(*it, it.key());
            app.toggleWidget(it.key(), true);
        }
        ASSERT_TRUE(XSession::waitFor([&] {
            return std::all_of(at.keyBegin(), at.keyEnd(), [&](const QString& name) {
                WidgetWindow* w = app.widgetWindows().value(name);
                // Off every screen, the window manager places it where it can.
                return w->isExposed() && (xOrigin(QString::number(w->winId())) == at[name] || at[name].x > 1440);
            });
        }));
    }
    void TearDown() override
    {
        for (const QString& name : kWidgets)
            app.toggleWidget(name, false);
    }
    SettingsManager& settings() { return SettingsManager::shared(); }
    AppDelegate app;
};

} // namespace

TEST_F(Registry, OneWindowPerWidgetAndNothingLeftWhenSwitchedOff)
{
    // Every weather view leaves a request in flight at a service that never answers.
    QTcpServer silent;
    ASSERT_TRUE(silent.listen(QHostAddress::LocalHost));
    QList<QPointer<QTcpSocket>> connections;
    QObject::connect(&silent, &QTcpServer::newConnection, [&] { connections << silent.nextPendingConnection(); });
    pointWeatherServicesAt(QString("http://127.0.0.1:%1").arg(silent.serverPort()));
    QList<QPointer<QObject>> made;
    for (int cycle = 0; cycle < 3; ++cycle)
        for (const QString& name : kWidgets) {
            app.toggleWidget(name, true);
            app.toggleWidget(name, true);
            ASSERT_EQ(app.widgetWindows().size(), 1);
            WidgetWindow* w = app.widgetWindows().value(name);
            ASSERT_TRUE(w->contentView()->rootView());
            made << w << w->contentView()->rootView();
            settings().loadSettings();
            EXPECT_TRUE(widgets::enabledOf(settings(), name));
            app.toggleWidget(name, false);
            settings().loadSettings();
            EXPECT_FALSE(widgets::enabledOf(settings(), name));
        }
    app.toggleWidget("calendar", true);
    EXPECT_TRUE(app.widgetWindows().isEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(std::all_of(made.cbegin(), made.cend(), [](const auto& p) { return p.isNull(); }));
    // Every request went with its view: the server sees each connection closed.
    EXPECT_TRUE(XSession::waitFor([&] {
        return connections.size() >= 3 && std::all_of(connections.cbegin(), connections.cend(), [](const auto& c) {
                   return c->state() == QAbstractSocket::UnconnectedState;
               });
    })) << connections.size();
    pointWeatherServicesAt("");
}

TEST_F(Registry, AMoveFromOutsideIsSnappedAndOnlyTheSnappedOriginIsStored)
{
    struct Case {
        const char* what;
        QString moved;
        Position drop, snapped;
    };
    const Case cases[] = {
        {"left of the clock, far below it", "weather", {1075, 300}, {1080, 300}},
        {"under the clock, right edges 5 apart", "battery", {1245, 515}, {1250, 520}},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        // The battery opens off every screen: its placement by the window manager is no move to store.
        open({{"clock", {1250, 690}}, {"weather", {600, 600}}, {"battery", {3000, 2000}}});
        QList<std::pair<QString, std::optional<Position>>> stored;
        const auto spy = QObject::connect(&settings(), &SettingsManager::positionChanged, [&](const QString& name) {
            stored.append({name, app.getSavedPosition(name)});
        });
        WidgetWindow* w = app.widgetWindows().value(c.moved);
        runTool("xdotool", {"windowmove", QString::number(w->winId()), QString::number(c.drop.x),
                            QString::number(XSession::screenHeight - 170 - c.drop.y)});
        EXPECT_TRUE(
            XSession::waitFor([&] { return !stored.isEmpty() && xOrigin(QString::number(w->winId())) == c.snapped; }));
        // The first store is already the snapped origin, not one a later move event brings.
        EXPECT_EQ(stored.value(0), (std::pair{c.moved, std::optional(c.snapped)}));
        EXPECT_EQ(w->frame(), (Rect{c.snapped.x, c.snapped.y, 170, 170}));
        QObject::disconnect(spy);
        TearDown();
    }
}

TEST_F(Registry, AResizeKeepsTheRightEdgeAndStoresTheNewOrigin)
{
    open({{"weather", {500, 300}}});
    WidgetWindow* w = app.widgetWindows().value("weather");
    for (const auto& [size, frame] : {std::pair{"medium", Rect{330, 300, 340, 170}}, {"small", {500, 300, 170, 170}}}) {
        SCOPED_TRACE(size);
        app.resizeWidget("weather", size);
        EXPECT_EQ(w->contentView()->frame().width, frame.width);
        EXPECT_EQ(settings().weatherPosition(), (Position{frame.x, frame.y}));
        EXPECT_TRUE(XSession::waitFor([&] {
            return xOrigin(QString::number(w->winId())) == Position{frame.x, frame.y};
        }));
    }
    app.resizeWidget("battery", "medium"); // not live: nothing stored
    EXPECT_FALSE(settings().batteryPosition());
}

TEST_F(Registry, ClickThroughLetsARealClickReachTheWindowBelowAndIsKept)
{
    struct Presses : QObject {
        int count = 0;
        bool eventFilter(QObject*, QEvent* e) override
        {
            return (count += e->type() == QEvent::MouseButtonPress), false;
        }
    } onWidget, onBelow;
    // In the widgets' layer and mapped first, so the widget stands above it.
    QRasterWindow below;
    below.setFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowStaysOnBottomHint);
    below.setGeometry(QRect(200, 200, 400, 400));
    below.installEventFilter(&onBelow);
    below.show();
    ASSERT_TRUE(XSession::waitFor([&] { return below.isExposed(); }));
    open({{"battery", {300, 430}}}); // X top-left at (300, 300)
    app.widgetWindows().value("battery")->installEventFilter(&onWidget);
    const auto click = [] { runTool("xdotool", {"mousemove", "385", "385", "click", "1"}); };
    click();
    EXPECT_TRUE(XSession::waitFor([&] { return onWidget.count == 1; }));
    EXPECT_EQ(onBelow.count, 0);
    app.updateClickThrough("battery", true);
    // The window system takes the change a moment later: clicks until one goes through.
    EXPECT_TRUE(XSession::waitFor([&] { return click(), XSession::waitFor([&] { return onBelow.count > 0; }, 500); }));
    EXPECT_EQ(onWidget.count, 1);
    settings().loadSettings();
    // Off and on again, the widget comes back click-through.
    app.toggleWidget("battery", false);
    app.toggleWidget("battery", true);
    EXPECT_TRUE(app.widgetWindows().value("battery")->ignoresMouseEvents());
    app.updateClickThrough("battery", false);
    EXPECT_FALSE(app.widgetWindows().value("battery")->ignoresMouseEvents());
}

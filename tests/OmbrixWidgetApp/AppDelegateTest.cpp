// The widget registry in-process on the run's display, its windows read back with X tools.
#include "AppDelegate.h"
#include "SettingsManager.h"
#include "WeatherFixtures.h"
#include "WidgetHostingView.h"
#include "WidgetWindow.h"
#include "XSession.h"

#include <QPointer>
#include <QQuickItem>
#include <QQuickWindow>
#include <QRasterWindow>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTest>
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
                return w->isExposed() && xOrigin(QString::number(w->winId())) == at[name];
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
    for (const QString& name : kWidgets) {
        app.toggleWidget(name, true);
        app.toggleWidget(name, true);
        ASSERT_EQ(app.widgetWindows().size(), 1);
        WidgetWindow* w = app.widgetWindows().value(name);
        made << w << w->contentView()->rootView();
        app.toggleWidget(name, false);
    }
    EXPECT_TRUE(app.widgetWindows().isEmpty());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(std::all_of(made.cbegin(), made.cend(), [](const auto& p) { return p.isNull(); }));
    // Every request went with its view: the server sees each connection closed.
    EXPECT_TRUE(XSession::waitFor([&] {
        return !connections.isEmpty() && std::all_of(connections.cbegin(), connections.cend(), [](const auto& c) {
            return c->state() == QAbstractSocket::UnconnectedState;
        });
    })) << connections.size();
    pointWeatherServicesAt("");
}

TEST_F(Registry, AMoveFromOutsideIsSnappedAndStoredOnceAndAResizeKeepsTheRightEdge)
{
    open({{"clock", {1250, 690}}, {"weather", {600, 600}}});
    QList<std::optional<Position>> stored;
    QObject::connect(&settings(), &SettingsManager::positionChanged, &app,
                     [&](const QString& name) { stored << app.getSavedPosition(name); });
    // Dropped left of the clock, far below it: its right edge goes to the clock's left one.
    WidgetWindow* w = app.widgetWindows().value("weather");
    const auto origin = [&] { return xOrigin(QString::number(w->winId())); };
    runProgram("xdotool", {"windowmove", QString::number(w->winId()), "1075", "430"});
    EXPECT_TRUE(XSession::waitFor([&] { return !stored.isEmpty() && origin() == Position{1080, 300}; }));
    // The first store is already the snapped origin, not one a later move event brings.
    EXPECT_EQ(stored.value(0), (Position{1080, 300}));
    for (const auto& [size, frame] :
         {std::pair{"medium", Rect{910, 300, 340, 170}}, {"small", {1080, 300, 170, 170}}}) {
        SCOPED_TRACE(size);
        app.resizeWidget("weather", size);
        EXPECT_EQ(w->contentView()->frame().width, frame.width);
        EXPECT_EQ(settings().weatherPosition(), (Position{frame.x, frame.y}));
        EXPECT_TRUE(XSession::waitFor([&] { return origin() == Position{frame.x, frame.y}; }));
    }
    EXPECT_EQ(w->frame(), (Rect{1080, 300, 170, 170}));
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
    const auto click = [] { runProgram("xdotool", {"mousemove", "385", "385", "click", "1"}); };
    click();
    EXPECT_TRUE(XSession::waitFor([&] { return onWidget.count == 1; }));
    EXPECT_EQ(onBelow.count, 0);
    settings().setClickThrough("battery", true);
    // The window system takes the change a moment later: clicks until one goes through.
    EXPECT_TRUE(XSession::waitFor([&] { return click(), XSession::waitFor([&] { return onBelow.count > 0; }, 500); }));
    settings().loadSettings();
    // Off and on again, the widget comes back click-through.
    app.toggleWidget("battery", false);
    app.toggleWidget("battery", true);
    EXPECT_TRUE(app.widgetWindows().value("battery")->ignoresMouseEvents());
    settings().setClickThrough("battery", false);
    EXPECT_FALSE(app.widgetWindows().value("battery")->ignoresMouseEvents());
}

TEST_F(Registry, ThePanelsSceneLivesWhileShownAndComesBackAsItWasLeft)
{
    for (const QString& name : kWidgets)
        settings().setProperty((name + "Enabled").toLatin1(), true); // every card open: room to scroll
    settings().saveWeatherSettings(WeatherSettings{true, "Milano, Italia", 45.46, 9.19});
    // The window and its scene are made at each show and gone at each hide; what the user left stays.
    const auto window = [&] { return app.controlPanelWindow(); };
    const auto item = [&](const char* name) { return window() ? window()->findChild<QQuickItem*>(name) : nullptr; };
    const auto shown = [&] {
        app.showControlPanel();
        return XSession::waitFor([&] { return window()->isExposed() && item("content"); });
    };
    const auto hidden = [&] {
        window()->hide();
        return XSession::waitFor([&] { return !window(); });
    };
    // A city typed and not saved, on the second tab; then the first tab scrolled down.
    ASSERT_TRUE(shown());
    QObject* model = item("content")->parentItem()->parentItem()->property("model").value<QObject*>();
    ASSERT_TRUE(model);
    model->setProperty("activeTab", "settings");
    ASSERT_TRUE(hidden() && shown());
    QQuickItem* field = item("cityField");
    ASSERT_TRUE(field && field->isVisible());
    field->forceActiveFocus();
    for (const char c : std::string(" Roma"))
        QTest::keyClick(window(), c);
    ASSERT_TRUE(hidden() && shown());
    EXPECT_EQ(item("cityField")->property("text").toString(), "Milano, Italia Roma");
    EXPECT_TRUE(item("settingsTab")->isVisible());
    model->setProperty("activeTab", "widgets");
    item("content")->setProperty("contentY", 150.0);
    ASSERT_TRUE(hidden() && shown());
    EXPECT_TRUE(XSession::waitFor([&] { return item("content")->property("contentY").toDouble() == 150.0; }));
    EXPECT_TRUE(item("widgetsTab")->isVisible());
    // Moved by the user, it comes back there.
    window()->setPosition(300, 120);
    ASSERT_TRUE(
        XSession::waitFor([&] { return xGeometry(QString::number(window()->winId())).topLeft() == QPoint(300, 120); }));
    ASSERT_TRUE(hidden() && shown());
    EXPECT_TRUE(
        XSession::waitFor([&] { return xGeometry(QString::number(window()->winId())).topLeft() == QPoint(300, 120); }));
    window()->hide();
    for (const QString& name : kWidgets)
        settings().setProperty((name + "Enabled").toLatin1(), false);
    settings().saveWeatherSettings(WeatherSettings());
}

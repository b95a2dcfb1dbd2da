// Snapping and stored positions in the running app, moved by real X requests and a real drag.
#include "DefaultsSuite.h"
#include "SettingsManager.h"
#include "XSession.h"

#include <QRegularExpression>
#include <QThread>
#include <gtest/gtest.h>

namespace {

constexpr int kScreenHeight = 900;

struct App {
    XSession x;
    explicit App(const QStringList& enabled, const QList<std::pair<QString, QByteArray>>& positions = {})
    {
        auto suite = DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
        for (const auto& name : enabled)
            suite->setObject(true, "widget." + name + ".enabled");
        for (const auto& [name, json] : positions)
            suite->setObject(json, "widget." + name + ".position");
        suite->synchronize();
    }
    QString window(const QString& name) { return x.waitForWindow("OmbrixWidget " + name); }
    // Origin in app coordinates, as the X server has it.
    QPointF origin(const QString& id)
    {
        const QRect g = x.geometryOf(id);
        return QPointF(g.x(), kScreenHeight - (g.y() + g.height()));
    }
    std::optional<Position> stored(const QString& name)
    {
        auto suite = DefaultsSuite::open(SettingsManager::suiteName, x.configDir());
        const auto data = suite->dataForKey("widget." + name + ".position");
        return data ? Position::fromJson(*data) : std::nullopt;
    }
};

} // namespace

TEST(SnapEndToEnd, MovedNextToAnotherWidgetEndsTouchingAndComesBackThere)
{
    App app({"clock", "weather"});
    ASSERT_TRUE(app.x.ok());
    ASSERT_TRUE(app.x.startApp());
    const QString clock = app.window("clock"), weather = app.window("weather");
    ASSERT_FALSE(clock.isEmpty());
    ASSERT_FALSE(weather.isEmpty());
    ASSERT_TRUE(XSession::waitFor([&] { return app.origin(clock) == QPointF(1250, 690); }));

    // 5 points left of the clock's left edge, far below it: x snaps to touch, y stays.
    app.x.run("xdotool", {"windowmove", weather, "1075", QString::number(kScreenHeight - 300 - 170)});
    EXPECT_TRUE(XSession::waitFor([&] { return app.origin(weather) == QPointF(1080, 300); }))
        << app.origin(weather).x() << "," << app.origin(weather).y();
    EXPECT_TRUE(XSession::waitFor([&] { return app.stored("weather") == Position{1080, 300}; }));
    EXPECT_FALSE(app.stored("clock"));

    app.x.stopApp();
    ASSERT_TRUE(app.x.startApp());
    const QString again = app.window("weather");
    EXPECT_TRUE(XSession::waitFor([&] { return app.origin(again) == QPointF(1080, 300); }));
}

TEST(SnapEndToEnd, ADragSettlesOnTheSnappedOriginAndStoresExactlyThat)
{
    App app({"clock"}, {{"clock", Position{400, 400}.toJson()}});
    ASSERT_TRUE(app.x.ok());
    ASSERT_TRUE(app.x.startApp());
    const QString clock = app.window("clock");
    ASSERT_TRUE(XSession::waitFor([&] { return app.origin(clock) == QPointF(400, 400); }));
    // Press in the widget and drag in steps to the screen's left edge, then release. The window
    // manager takes over after the first small step, which the window trails; it ends 4 points
    // from the edge.
    const int topY = kScreenHeight - (400 + 170);
    app.x.run("xdotool", {"mousemove", "480", QString::number(topY + 20), "mousedown", "1"});
    QThread::msleep(200);
    for (int x = 476; x >= 80; x -= 30) {
        app.x.run("xdotool", {"mousemove", QString::number(x), QString::number(topY + 60)});
        QThread::msleep(30);
    }
    app.x.run("xdotool", {"mousemove", "80", QString::number(topY + 60)});
    QThread::msleep(200);
    app.x.run("xdotool", {"mouseup", "1"});
    // The left screen edge takes it.
    EXPECT_TRUE(XSession::waitFor([&] { return app.origin(clock).x() == 0; }))
        << app.origin(clock).x() << "," << app.origin(clock).y();
    EXPECT_TRUE(XSession::waitFor([&] {
        const auto s = app.stored("clock");
        return s && QPointF(s->x, s->y) == app.origin(clock);
    })) << app.origin(clock).x()
        << "," << app.origin(clock).y();
}

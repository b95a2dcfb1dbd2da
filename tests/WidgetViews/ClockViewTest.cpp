#include "ClockFace.h"
#include "ClockWidgetModel.h"
#include "SettingsManager.h"
#include "ViewHarness.h"
#include "XSession.h"

#include <QSignalSpy>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>

namespace {

const QDateTime kFrozen(QDate(2026, 11, 23), QTime(15, 30, 7)); // a Monday

struct FrozenClock {
    explicit FrozenClock(const QDateTime& at)
    {
        ClockWidgetModel::setTimeSource([at] { return at; });
    }
    ~FrozenClock() { ClockWidgetModel::setTimeSource({}); }
};

void resetStore()
{
    auto& s = SettingsManager::shared();
    s.setWeatherSettings(WeatherSettings());
    s.setSharedData(SharedWidgetData());
    s.setGlassTheme("transparent");
    s.setClockStyle("analog");
    s.setClockSize("small");
}

// A point `distance` from the centre (cx, cy) along `angle` degrees clockwise from twelve.
QPoint along(double cx, double cy, double angle, double distance)
{
    const double a = angle * std::numbers::pi / 180.0;
    return QPoint(int(std::lround(cx + std::sin(a) * distance)), int(std::lround(cy - std::cos(a) * distance)));
}

// Whether any pixel within one of `p` has the colour: thin hands are anti-aliased across pixels.
bool anyNear(const QImage& img, QPoint p, bool (*test)(const QColor&))
{
    for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
            if (test(img.pixelColor(p + QPoint(dx, dy))))
                return true;
    return false;
}
bool red(const QColor& c)
{
    return c.red() > 180 && c.green() < 120 && c.blue() < 120 && c.alpha() > 150;
}
bool white(const QColor& c)
{
    return c.red() > 210 && c.green() > 210 && c.blue() > 210 && c.alpha() > 150;
}
bool isRed(const QImage& img, QPoint p)
{
    return anyNear(img, p, red);
}
bool isWhite(const QImage& img, QPoint p)
{
    return anyNear(img, p, white);
}

} // namespace

TEST(ClockModel, TextsAndAnglesOfAFrozenMoment)
{
    struct Case {
        QTime time;
        double hour, minute, second;
        const char* clock;
        const char* seconds;
    };
    const QList<Case> cases = {
        {QTime(15, 30, 7), 105.0, 180.7, 42.0, "15:30", "7 s"},
        {QTime(0, 0, 0), 0.0, 0.0, 0.0, "00:00", "0 s"},
        {QTime(12, 0, 0), 0.0, 0.0, 0.0, "12:00", "0 s"},
        {QTime(23, 59, 42), 359.5, 358.2, 252.0, "23:59", "42 s"},
    };
    for (const auto& c : cases) {
        const QDateTime d(QDate(2026, 11, 23), c.time);
        SCOPED_TRACE(d.toString().toStdString());
        EXPECT_DOUBLE_EQ(ClockWidgetModel::hourAngle(d), c.hour);
        EXPECT_NEAR(ClockWidgetModel::minuteAngle(d), c.minute, 1e-9);
        EXPECT_DOUBLE_EQ(ClockWidgetModel::secondAngle(d), c.second);
        EXPECT_EQ(ClockWidgetModel::timeString(d), c.clock);
        EXPECT_EQ(ClockWidgetModel::secondsString(d), c.seconds);
    }
}

TEST(ClockModel, ItalianDatesFromTheLocale)
{
    EXPECT_EQ(ClockWidgetModel::shortDateString(kFrozen), "LUN 23");
    EXPECT_EQ(ClockWidgetModel::fullDateString(kFrozen), QString::fromUtf8("LUNEDÌ, 23 NOV"));
    EXPECT_EQ(ClockWidgetModel::weekdayName(kFrozen), QString::fromUtf8("Lunedì"));
    EXPECT_EQ(ClockWidgetModel::dayNumString(kFrozen), "23");
    const QDateTime sunday(QDate(2026, 3, 1), QTime(9, 5, 0));
    EXPECT_EQ(ClockWidgetModel::shortDateString(sunday), "DOM 1");
    EXPECT_EQ(ClockWidgetModel::fullDateString(sunday), "DOMENICA, 1 MAR");
    EXPECT_EQ(ClockWidgetModel::weekdayName(sunday), "Domenica");
}

TEST(ClockModel, CityLabelRules)
{
    struct Case {
        const char* what;
        WeatherSettings settings;
        std::optional<WeatherData> weather;
        QString expected;
    };
    const QList<Case> cases = {
        {"manual city with country", {true, "Roma, Italia", 41.9, 12.5}, {}, "ROMA"},
        {"manual, leading blank kept", {true, " Roma, Italia", {}, {}}, {}, " ROMA"},
        {"manual, empty", {true, "", {}, {}}, {}, ""},
        {"manual, two words", {true, "New York, USA", {}, {}}, {}, "NEW YORK"},
        {"manual wins over weather block", {true, "Milano", {}, {}}, WeatherData{"Torino", {}, {}, {}}, "MILANO"},
        {"automatic without weather block", {false, "Roma, Italia", {}, {}}, {}, "MILANO"},
        {"automatic, block without city", {false, "", {}, {}}, WeatherData{{}, 3.0, 1, {}}, "MILANO"},
        {"automatic with weather block", {false, "", {}, {}}, WeatherData{"Torino", {}, {}, {}}, "TORINO"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        resetStore();
        auto& s = SettingsManager::shared();
        s.setWeatherSettings(c.settings);
        SharedWidgetData shared;
        shared.weather = c.weather;
        s.setSharedData(shared);
        ClockWidgetModel model;
        model.setActive(true); // coming on screen looks the label up once
        EXPECT_EQ(model.city(), c.expected);
    }
}

TEST(ClockModel, OnlyANewCityTextRefreshesTheLabel)
{
    resetStore();
    auto& s = SettingsManager::shared();
    ClockWidgetModel model;
    model.setActive(true);
    SharedWidgetData shared;
    shared.weather = WeatherData{"Torino", {}, {}, {}};
    s.setSharedData(shared); // a new block alone does not update
    EXPECT_EQ(model.city(), "MILANO");
    s.setWeatherSettings(WeatherSettings{true, "", {}, {}}); // useManual alone does not either
    EXPECT_EQ(model.city(), "MILANO");
    s.setWeatherSettings(WeatherSettings{true, "Napoli, Italia", {}, {}});
    EXPECT_EQ(model.city(), "NAPOLI");
    s.setWeatherSettings(WeatherSettings{false, "Napoli, Italia", {}, {}});
    EXPECT_EQ(model.city(), "NAPOLI");
    s.setWeatherSettings(WeatherSettings{false, "Bari", {}, {}});
    EXPECT_EQ(model.city(), "TORINO");
}

TEST(ClockFace, DialIsOnePathOfSixtyTicksWithLongerHourTicks)
{
    const QPainterPath path = AnalogClockDial::tickPath(134, 134);
    ASSERT_EQ(path.elementCount(), 120);
    const double r = 67;
    for (int i = 0; i < 60; ++i) {
        const QPainterPath::Element inner = path.elementAt(2 * i), outer = path.elementAt(2 * i + 1);
        const double innerR = std::hypot(inner.x - 67, inner.y - 67), outerR = std::hypot(outer.x - 67, outer.y - 67);
        EXPECT_NEAR(outerR, r * 0.9, 1e-9);
        EXPECT_NEAR(innerR, r * (i % 5 == 0 ? 0.78 : 0.84), 1e-9) << i;
    }
}

TEST(ClockView, RendersEveryStyleSizeAndTheme)
{
    FrozenClock frozen(kFrozen);
    struct Look {
        QString style, size, theme;
    };
    QMap<QString, QImage> shots;
    for (const QString style : {"analog", "digital"})
        for (const QString size : {"small", "medium"})
            for (const QString theme : {"transparent", "opaque"}) {
                const QString tag = QString("clock-%1-%2-%3").arg(style, size, theme);
                SCOPED_TRACE(tag.toStdString());
                resetStore();
                auto& s = SettingsManager::shared();
                s.setClockStyle(style);
                s.setClockSize(size);
                s.setGlassTheme(theme);
                const int w = size == "medium" ? 340 : 170;
                ViewHarness view("qrc:/Ombrix/WidgetViews/ClockWidgetView.qml", w, 170);
                ASSERT_TRUE(view.root()) << view.errors().toStdString();
                const QImage img = view.grab();
                img.save(artifactsDir() + "/" + tag + ".png");
                shots.insert(tag, img);
                // Outside the rounded corners the window is fully transparent.
                for (const QPoint p : {QPoint(1, 1), QPoint(w - 2, 1), QPoint(1, 168), QPoint(w - 2, 168)})
                    EXPECT_EQ(img.pixelColor(p).alpha(), 0) << p.x() << "," << p.y();
                EXPECT_GT(img.pixelColor(w / 2, 3).alpha(), 0);
                // The calendar column (a big white day number) stands only at medium.
                const double calendar = brightness(img, QRect(w - 18 - 140, 60, 60, 40));
                if (size == "medium")
                    EXPECT_GT(calendar, 25);
                else
                    EXPECT_FALSE(view.find<QQuickItem>("calendar")->isVisible());
            }

    // The opaque glass is darker than the transparent one at the same point.
    for (const QString key : {"analog-small", "digital-medium"}) {
        const QRect probe(22, 150, 10, 8);
        EXPECT_LT(brightness(shots["clock-" + key + "-opaque"], probe),
                  brightness(shots["clock-" + key + "-transparent"], probe))
            << key.toStdString();
        EXPECT_NE(shots["clock-" + key + "-opaque"].pixelColor(20, 100),
                  shots["clock-" + key + "-transparent"].pixelColor(20, 100));
    }

    // At 15:30:07 the red second hand lies along 42 degrees, the hour hand along 105.
    for (const QString look : {"clock-analog-small-transparent", "clock-analog-small-opaque"}) {
        const QImage& img = shots[look];
        SCOPED_TRACE(look.toStdString());
        for (double d : {25.0, 40.0, 55.0})
            EXPECT_TRUE(isRed(img, along(85, 85, 42, d))) << d;
        EXPECT_FALSE(isRed(img, along(85, 85, 132, 40)));
        for (double d : {12.0, 24.0, 32.0})
            EXPECT_TRUE(isWhite(img, along(85, 85, 105, d))) << d;
        EXPECT_FALSE(isWhite(img, along(85, 85, 250, 24)));
        EXPECT_TRUE(isWhite(img, along(85, 85, 180.7, 40))); // minute hand
    }
    // At medium the dial is the left part: its centre moves, the hands follow.
    const QImage& medium = shots["clock-analog-medium-transparent"];
    const double cx = 18 + (304 - 140 - 33) / 2.0;
    EXPECT_TRUE(isRed(medium, along(cx, 85, 42, 40)));
}

TEST(ClockView, ThemeChangeRepaintsTheLiveWidget)
{
    FrozenClock frozen(kFrozen);
    resetStore();
    ViewHarness view("qrc:/Ombrix/WidgetViews/ClockWidgetView.qml", 170, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    QQuickWindow* window = view.window();
    const double before = brightness(view.grab(), QRect(22, 150, 10, 8));
    SettingsManager::shared().setGlassTheme("opaque");
    const double after = brightness(view.grab(), QRect(22, 150, 10, 8));
    EXPECT_LT(after, before);
    EXPECT_EQ(view.window(), window);
    SettingsManager::shared().setGlassTheme("something else");
    EXPECT_DOUBLE_EQ(brightness(view.grab(), QRect(22, 150, 10, 8)), before); // unknown looks transparent
}

TEST(ClockView, ALongCityEndsInAnEllipsisInsideItsBox)
{
    FrozenClock frozen(kFrozen);
    const QString city = QString("San Giovanni ").repeated(20).trimmed();
    for (const auto& [style, size, label] :
         {std::tuple{"analog", "small", "analogCity"}, std::tuple{"digital", "small", "digitalCity"},
          std::tuple{"digital", "medium", "digitalCity"}}) {
        const QString tag = QString("clock-long-city-%1-%2").arg(style, size);
        SCOPED_TRACE(tag.toStdString());
        resetStore();
        auto& s = SettingsManager::shared();
        s.setClockStyle(style);
        s.setClockSize(size);
        s.setSharedData(SharedWidgetData{{}, {}, WeatherData{city, 20.0, 1, {}}, {}});
        const int w = QString(size) == "medium" ? 340 : 170;
        ViewHarness view("qrc:/Ombrix/WidgetViews/ClockWidgetView.qml", w, 170);
        ASSERT_TRUE(view.root()) << view.errors().toStdString();
        view.grab().save(artifactsDir() + "/" + tag + ".png");
        auto* text = view.find<QQuickItem>(label);
        ASSERT_TRUE(text);
        EXPECT_TRUE(text->property("truncated").toBool());
        const QRectF box = text->mapRectToScene(QRectF(0, 0, text->width(), text->height()));
        EXPECT_GE(box.left(), 18);
        EXPECT_LE(box.right(), w - 18);
    }
}

#include "EmojiShadow.h"
#include "PixelChecks.h"
#include "ReplayServer.h"
#include "ViewHarness.h"
#include "WeatherFixtures.h"
#include "WeatherWidgetModel.h"
#include "XSession.h"

#include <QFont>
#include <gtest/gtest.h>

namespace {

const QString kView = "qrc:/Ombrix/WidgetViews/WeatherWidgetView.qml";

SettingsManager& settings()
{
    return SettingsManager::shared();
}

// The Milan reply with another current weather code.
QByteArray forecastWithCode(int code)
{
    QByteArray body = samples::forecastMilan;
    return body.replace(R"("temperature_2m":21.5,"weathercode":2,)",
                        QByteArray(R"("temperature_2m":21.5,"weathercode":)") + QByteArray::number(code) + ",");
}

// Red minus blue of a pixel composed over black: how warm the glow is there.
int warmth(const QImage& img, QPoint p)
{
    const QColor c = img.pixelColor(p);
    return int((c.red() - c.blue()) * c.alphaF());
}

class WeatherViewTest : public ::testing::Test {
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.listen());
        pointWeatherServicesAt(server.baseUrl());
        reset();
    }
    void reset()
    {
        server.setJson("/json/", samples::ipMilan);
        server.setJson("/v1/forecast", samples::forecastMilan);
        settings().saveWeatherSettings(WeatherSettings{});
        settings().setWeatherSize("small");
        settings().setGlassTheme("transparent");
    }
    void TearDown() override { pointWeatherServicesAt(""); }

    static QString panel(const ViewHarness& view) { return view.root()->property("panel").toString(); }
    static bool waitForPanel(const ViewHarness& view, const QString& name)
    {
        return XSession::waitFor([&] { return panel(view) == name; }, 10000);
    }
    static WeatherWidgetModel* model(const ViewHarness& view)
    {
        return qobject_cast<WeatherWidgetModel*>(view.root()->property("model").value<QObject*>());
    }
    // A grab can catch a frame drawn before the layouts settled on new data: grab until two
    // frames agree. The spinner never settles, so the loading panel takes one grab.
    static QImage settledGrab(ViewHarness& view)
    {
        QImage last = view.grab();
        if (panel(view) == "loading")
            return last;
        for (int i = 0; i < 10; ++i) {
            QImage next = view.grab();
            if (next == last)
                break;
            last = std::move(next);
        }
        return last;
    }
    static QFont fontOf(const ViewHarness& view, const QString& name)
    {
        return view.find<QQuickItem>(name)->property("font").value<QFont>();
    }

    ReplayServer server;
};

} // namespace

TEST_F(WeatherViewTest, EveryPanelAtBothSizesAndThemes)
{
    struct State {
        const char* name;
        std::function<void(ReplayServer&)> serve;
        QString panel;
    };
    const QList<State> states = {
        {"loading", [](ReplayServer& s) { s.setHang("/json/"); }, "loading"},
        {"error", [](ReplayServer& s) { s.setJson("/v1/forecast", samples::openMeteoError, 500); }, "error"},
        {"data", [](ReplayServer&) {}, "data"},
        {"nodaily", [](ReplayServer& s) { s.setJson("/v1/forecast", samples::forecastNoDaily); }, "data"},
    };
    for (const auto& state : states)
        for (const QString size : {"small", "medium"})
            for (const QString theme : {"transparent", "opaque"}) {
                const QString tag = QString("weather-%1-%2-%3").arg(state.name, size, theme);
                SCOPED_TRACE(tag.toStdString());
                reset();
                state.serve(server);
                settings().setWeatherSize(size);
                settings().setGlassTheme(theme);
                const int w = size == "medium" ? 340 : 170;
                ViewHarness view(kView, w, 170);
                ASSERT_TRUE(view.root()) << view.errors().toStdString();
                ASSERT_TRUE(waitForPanel(view, state.panel)) << panel(view).toStdString();
                const QImage img = settledGrab(view);
                img.save(artifactsDir() + "/" + tag + ".png");

                for (const QString name : {"loadingPanel", "errorPanel", "dataPanel"})
                    EXPECT_EQ(view.find<QQuickItem>(name)->isVisible(), name == state.panel + "Panel")
                        << name.toStdString();
                for (const QPoint p : {QPoint(1, 1), QPoint(w - 2, 1), QPoint(1, 168), QPoint(w - 2, 168)})
                    EXPECT_EQ(img.pixelColor(p).alpha(), 0);

                const QRect content(18, 18, w - 36, 134);
                const QRect centre(w / 2 - 30, 40, 60, 70);
                const QRect forecast(w - 18 - 140, 18, 140, 134);
                // Bare glass below the centred panels, to tell their captions from the background.
                const double glass = brightness(img, QRect(w / 2 - 40, 125, 80, 14));
                if (state.panel == "loading") {
                    // White spokes above the caption; no emoji anywhere.
                    EXPECT_GT(brightness(img, QRect(w / 2 - 16, 57, 32, 32)) - glass, 25);
                    EXPECT_GT(brightness(img, QRect(w / 2 - 40, 101, 80, 12)) - glass, 20);
                    EXPECT_EQ(countPixels(img, content, coloured), 0);
                } else if (state.panel == "error") {
                    EXPECT_GT(countPixels(img, centre, coloured), 100); // the globe
                    EXPECT_GT(brightness(img, QRect(w / 2 - 40, 92, 80, 14)) - glass, 20);
                    EXPECT_EQ(model(view)->glowColor().alpha(), 0); // never loaded: no glow
                } else {
                    const bool daily = QString(state.name) == "data";
                    const bool withForecast = daily && size == "medium";
                    const int mainRight = withForecast ? w - 18 - 140 - 33 : w - 18;
                    // The emoji at the top right of the main column, the temperature at its left.
                    EXPECT_GT(countPixels(img, QRect(mainRight - 34, 18, 34, 34), coloured), 50);
                    EXPECT_GT(countPixels(img, QRect(18, 60, 60, 50), bright), 60);
                    EXPECT_EQ(view.find<QQuickItem>("highLow")->isVisible(), daily);
                    EXPECT_EQ(view.find<QQuickItem>("forecast")->isVisible(), withForecast);
                    EXPECT_EQ(fontOf(view, "temperature").pixelSize(), size == "medium" ? 50 : 58);
                    if (withForecast) {
                        EXPECT_GT(countPixels(img, forecast, coloured), 150);                     // four emoji
                        EXPECT_GT(countPixels(img, forecast.adjusted(100, 0, 0, 0), bright), 40); // maxima
                    } else if (size == "medium") {
                        // The main column takes the whole width: nothing left of its emoji, above the glow.
                        EXPECT_EQ(countPixels(img, QRect(w - 18 - 140, 18, 100, 70), coloured), 0);
                        EXPECT_EQ(countPixels(img, QRect(w - 18 - 140, 18, 100, 134), bright), 0);
                    }
                }
            }
}

TEST_F(WeatherViewTest, TheGlowFollowsTheWeatherCode)
{
    // From the warmest glow to the coolest; which code gives which colour is the rules' to test.
    QList<int> warmths;
    for (const int code : {0, 2, 3, 61}) {
        SCOPED_TRACE(code);
        server.setJson("/v1/forecast", forecastWithCode(code));
        ViewHarness view(kView, 170, 170);
        ASSERT_TRUE(view.root()) << view.errors().toStdString();
        ASSERT_TRUE(waitForPanel(view, "data"));
        const QImage img = settledGrab(view);
        img.save(artifactsDir() + QString("/weather-glow-%1.png").arg(code));
        warmths << warmth(img, QPoint(85, 163));
    }
    EXPECT_GT(warmths[0], warmths[1]);
    EXPECT_GT(warmths[1], 0);
    EXPECT_LT(warmths[2], 0);
    EXPECT_LT(warmths[3], warmths[2]);
}

TEST_F(WeatherViewTest, AFailedReloadShowsTheErrorAndTheNextSuccessTheSameDataAgain)
{
    ViewHarness view(kView, 170, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    ASSERT_TRUE(waitForPanel(view, "data"));
    const QImage before = settledGrab(view);

    // Each step is one of the widget's own triggers, a new city text (the place still comes from the
    // IP address), and starts exactly one load.
    server.setJson("/v1/forecast", "<html>502</html>", 502);
    settings().saveWeatherSettings({false, "Roma, Italia", 41.9, 12.5});
    ASSERT_TRUE(waitForPanel(view, "error"));
    const QImage failed = settledGrab(view);
    failed.save(artifactsDir() + "/weather-reload-failed.png");
    // The glow stays on the last weather's colour.
    EXPECT_EQ(warmth(failed, QPoint(85, 163)), warmth(before, QPoint(85, 163)));

    server.setJson("/v1/forecast", samples::forecastMilan);
    settings().saveWeatherSettings({false, "Napoli, Italia", 40.8, 14.2});
    ASSERT_TRUE(waitForPanel(view, "data"));
    const QImage after = settledGrab(view);
    after.save(artifactsDir() + "/weather-reload-recovered.png");
    EXPECT_EQ(after, before);
}

TEST_F(WeatherViewTest, TheSpinnerTurnsOnlyWhileLoading)
{
    server.setHang("/v1/forecast");
    ViewHarness view(kView, 170, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    ASSERT_TRUE(waitForPanel(view, "loading"));
    QQuickItem* spinner = view.find<QQuickItem>("spinner");
    QObject* timer = view.root()->findChild<QObject*>("spinnerTimer");
    const int first = spinner->property("step").toInt();
    EXPECT_TRUE(XSession::waitFor([&] { return spinner->property("step").toInt() != first; }, 2000));
    EXPECT_TRUE(timer->property("running").toBool());

    // A new city text starts a load that answers; the spinner goes and stops.
    server.setJson("/v1/forecast", samples::forecastMilan);
    settings().saveWeatherSettings({false, "Roma, Italia", {}, {}});
    ASSERT_TRUE(waitForPanel(view, "data"));
    EXPECT_FALSE(timer->property("running").toBool());
    EXPECT_FALSE(spinner->isVisible());
}

TEST_F(WeatherViewTest, GrowingToMediumDrawsTheForecastFromTheDataHeld)
{
    ViewHarness view(kView, 170, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    ASSERT_TRUE(waitForPanel(view, "data"));
    const auto requests = server.requestLines().size();

    settings().setWeatherSize("medium");
    view.resize(340, 170);
    const QImage img = settledGrab(view);
    img.save(artifactsDir() + "/weather-grown-medium.png");
    EXPECT_EQ(panel(view), "data");
    EXPECT_EQ(server.requestLines().size(), requests);
    EXPECT_GT(countPixels(img, QRect(340 - 18 - 140, 18, 140, 134), coloured), 150);
}

TEST_F(WeatherViewTest, TheCityIsShownAsTyped)
{
    struct Case {
        QString stored;
        QString shown;
    };
    const QList<Case> cases = {{"A, Italia", "A"}, {"<b>A</b>, Italia", "<b>A</b>"}};
    QList<double> widths;
    for (const auto& c : cases) {
        settings().saveWeatherSettings({true, c.stored, 45.0, 9.0});
        ViewHarness view(kView, 340, 170);
        ASSERT_TRUE(view.root()) << view.errors().toStdString();
        ASSERT_TRUE(waitForPanel(view, "data"));
        QQuickItem* city = view.find<QQuickItem>("city");
        EXPECT_EQ(city->property("text").toString(), c.shown);
        widths << city->implicitWidth();
    }
    // Markup would leave one bold letter; typed text shows all eight characters.
    EXPECT_GT(widths[1], 4 * widths[0]);
}

TEST(EmojiShadow, ASoftDarkSilhouetteOfTheGlyphs)
{
    QFont font("Noto Color Emoji");
    font.setPixelSize(26);
    const QSize size(50, 50);
    const QColor shade(0, 0, 0, 77);
    struct Coverage {
        int covered = 0, partial = 0, maxAlpha = 0, leftMargin = 0;
    };
    const auto measure = [&](const QString& text, int radius) {
        const QImage img =
            EmojiShadow::shadowImage(text, font, shade, radius, size).convertToFormat(QImage::Format_ARGB32);
        Coverage c;
        for (int y = 0; y < size.height(); ++y)
            for (int x = 0; x < size.width(); ++x) {
                const QColor px = img.pixelColor(x, y);
                EXPECT_EQ(px.red() + px.green() + px.blue(), 0); // only the shadow colour, never the emoji's
                c.maxAlpha = std::max(c.maxAlpha, px.alpha());
                c.covered += px.alpha() > 0;
                c.partial += px.alpha() > 0 && px.alpha() < 40;
                c.leftMargin += x < 3 && px.alpha() > 0;
            }
        return c;
    };
    for (const QString& text : {QString::fromUtf8("\u2600\uFE0F"), QString::fromUtf8("\u2601\uFE0F")}) {
        SCOPED_TRACE(text.toStdString());
        const Coverage sharp = measure(text, 0), soft = measure(text, 6);
        EXPECT_GE(sharp.maxAlpha, 70);
        EXPECT_LE(sharp.maxAlpha, 77);
        EXPECT_LE(soft.maxAlpha, 77);
        EXPECT_GT(soft.covered, sharp.covered * 13 / 10);
        EXPECT_GT(soft.partial, 2 * sharp.partial);
        EXPECT_GT(soft.leftMargin, 0); // the blur reaches past the text's box
    }
    EXPECT_EQ(measure("", 6).covered, 0);
}

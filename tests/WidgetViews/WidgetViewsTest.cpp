#include "../monitors/FakeSources.h"
#include "BatteryMonitor.h"
#include "ClockWidgetModel.h"
#include "MusicMonitor.h"
#include "MusicScripts.h"
#include "PixelChecks.h"
#include "ReplayServer.h"
#include "SettingsManager.h"
#include "ViewHarness.h"
#include "WeatherFixtures.h"
#include "XSession.h"

#include <QFontMetricsF>
#include <gtest/gtest.h>

namespace {

// `min` pixels of a kind inside a named item's box; 0: none at all (a hidden item has none).
struct Probe {
    QString item;
    std::function<bool(const QColor&)> kind;
    int min;
};
// A view at one size in both themes: its state, the outside text shown (long: elided) and by which items, the paint.
struct Look {
    QString view, size, state, text;
    QList<Probe> probes;
    QStringList texts;
};

const QColor kCover(40, 110, 220), kSpotify(29, 185, 84);
const QString kLong = QString("Un nome lungo ").repeated(8);

const QString kAccessories =
    "+-o AppleDeviceManagementHIDEventService\n {\n \"BatteryPercent\" = 50\n \"Product\" = \"Magic Mouse\"\n }\n"
    "+-o AppleDeviceManagementHIDEventService\n {\n \"BatteryPercent\" = 40\n \"Product\" = \"Studio Headphones\"\n "
    "}\n";

} // namespace

TEST(WidgetViews, EveryLookAtBothThemes)
{
    ReplayServer server; // the weather services and the cover
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    auto* texts = new FakeBatteryTexts;
    BatteryMonitor::shared().setTextSource(std::unique_ptr<BatteryTextSource>(texts));
    auto* runner = new FakeScriptRunner;
    auto previous = MusicMonitor::shared().replaceRunner(std::unique_ptr<ScriptRunner>(runner));
    QImage cover(64, 64, QImage::Format_RGB32);
    cover.fill(kCover);
    server.setReply("/cover.png", {200, ReplayServer::png(cover), "image/png"});
    ClockWidgetModel::setTimeSource([] { return QDateTime(QDate(2026, 11, 23), QTime(15, 30, 7)); });
    auto& s = SettingsManager::shared();

    const auto set = [&](const Look& look) {
        const QStringList state = look.state.split(' ');
        s.saveWeatherSettings({true, look.text + ", Italia", 45.0, 9.0}); // the clock shows this city too
        if (look.view == "Weather") {
            const QMap<QString, QByteArray> bodies{{"nodaily", samples::forecastNoDaily},
                                                   {"error", samples::openMeteoError}};
            server.setJson("/v1/forecast", bodies.value(state[0], samples::forecastMilan),
                           state[0] == "error" ? 500 : 200);
            if (state[0] == "loading")
                server.setHang("/v1/forecast");
        } else if (look.view == "Battery") {
            texts->pmset = QString("Now drawing from '%1'\n -InternalBattery-0 (id=1)\t%2%; %3;\n")
                               .arg(state[1] == "charging" ? "AC Power" : "Battery Power", state[0], state[1]);
            texts->ioreg = kAccessories;
            texts->name = look.text;
            s.setBatteryVisibleDevices({"macbook", "mouse", "airpods"});
        } else if (look.view == "Music") { // Spotify plays (or nothing does), Apple Music is quiet
            runner->replies[musicscript::isRunning(musicscript::spotify)] = "true";
            runner->replies[musicscript::isRunning(musicscript::music)] = "false";
            const QString art = state.size() > 1 ? server.url("/cover.png") : "";
            runner->replies[musicscript::nowPlaying(musicscript::spotify)] =
                state[0].isEmpty() ? "" : QStringList{look.text, look.text, art, state[0]}.join("|||");
        } else
            s.setClockStyle(state[0]);
    };
    const Probe emoji{"emoji", coloured, 50}, noForecast{"forecast", coloured, 0},
        hand{"secondHand", painted(Hue::Red), 20}, calendar{"calendar", bright, 50}, time{"digital", bright, 100},
        noBolt{"bolt", painted(Hue::Yellow), 0}, bolt{"bolt", painted(Hue::Yellow), 10},
        art{"artwork", opaqueNear(kCover), 3000};
    // clang-format off
    const QList<Look> looks = {
        {"Weather", "small", "data", "<b>A</b>", {emoji, noForecast}, {"city"}},
        {"Weather", "medium", "data", kLong, {emoji, {"forecast", coloured, 150}}, {"city"}},
        {"Weather", "medium", "nodaily", "A", {emoji, noForecast}, {}},
        {"Weather", "small", "loading", "A", {{"spinner", bright, 20}, {"emoji", coloured, 0}}, {}},
        {"Weather", "medium", "error", "A", {{"errorPanel", coloured, 100}, {"spinner", bright, 0}}, {}},
        {"Battery", "small", "15 charging", "<b>Anna</b>", {{"arc", painted(Hue::Red), 200}, bolt}, {"name"}},
        {"Battery", "small", "64 discharging", kLong, {{"arc", painted(Hue::Green), 300}, noBolt}, {"name"}},
        {"Battery", "medium", "10 charging", "<b>Anna</b>", {{"arc", painted(Hue::Red), 40}, bolt}, {"name"}},
        {"Battery", "medium", "64 discharging", kLong, {{"centreIcon", bright, 10}, noBolt}, {"name"}},
        {"Music", "small", "", "", {}, {"waitingText"}},
        {"Music", "medium", "", "", {}, {"waitingText"}},
        {"Music", "small", "spotify art", "<i>y</i>&amp;", {art}, {"track", "artist"}},
        {"Music", "medium", "<b>mpv</b> art", kLong, {art, {"previousButton", bright, 20}}, {"track", "artist"}},
        {"Music", "medium", "spotify", "<u>A</u>", {{"artPlaceholder", opaqueNear(kCover), 0}, {"playPauseButton", opaqueNear(kSpotify), 300}}, {"track"}},
        {"Clock", "small", "analog", "<b>A</b>", {hand}, {"analogCity"}},
        {"Clock", "medium", "analog", kLong, {hand, calendar}, {}},
        {"Clock", "small", "digital", kLong, {time}, {"digitalCity"}},
        {"Clock", "medium", "digital", "<b>A</b>", {time, calendar}, {"digitalCity"}},
    };
    // clang-format on
    QMap<QString, int> glass; // opacity of the bare glass, per look and theme
    for (const Look& look : looks)
        for (const QString theme : {"transparent", "opaque"}) {
            const QString tag = QString("%1-%2-%3-%4").arg(look.view, look.size).arg(&look - looks.data()).arg(theme);
            SCOPED_TRACE(tag.toStdString());
            set(look);
            s.setGlassTheme(theme);
            s.setProperty((look.view.toLower() + "Size").toLatin1(), look.size);
            const int w = look.size == "medium" ? 340 : 170;
            ViewHarness view("qrc:/Ombrix/WidgetViews/" + look.view + "WidgetView.qml", w, 170);
            ASSERT_TRUE(view.root) << view.errors.toStdString();
            QImage img;
            const auto count = [&](const Probe& p) {
                QQuickItem* item = view.find(p.item);
                return item && item->isVisible()
                           ? countPixels(img, item->mapRectToScene(item->boundingRect()).toRect(), p.kind)
                           : 0;
            };
            const auto ok = [&](const Probe& p) { return p.min ? count(p) >= p.min : count(p) == 0; };
            const auto shown = [&] { return std::all_of(look.probes.begin(), look.probes.end(), ok); };
            XSession::waitFor([&] { return !(img = view.grab()).isNull() && shown(); }, 10000);
            img.save(artifactsDir() + "/" + tag + ".png");
            for (const Probe& p : look.probes)
                EXPECT_TRUE(ok(p)) << p.item.toStdString() << " " << count(p);
            for (const QPoint p : {QPoint(1, 1), QPoint(w - 2, 1), QPoint(1, 168), QPoint(w - 2, 168)})
                EXPECT_EQ(img.pixelColor(p).alpha(), 0); // round corners
            glass[tag] = img.pixelColor(8, 70).alpha();
            EXPECT_EQ(view.misplaced(QRectF(18, 18, w - 36, 134)), "");
            for (const QString& name : look.texts) {
                SCOPED_TRACE(name.toStdString());
                QQuickItem* text = view.find(name);
                ASSERT_TRUE(text);
                const double factor = text->property("factor").isValid() ? text->property("factor").toReal() : 1;
                const double width = text->property("contentWidth").toReal(); // as wide as the typed characters
                const QFontMetricsF metrics(text->property("font").value<QFont>());
                EXPECT_EQ(text->property("lineCount").toInt(), 1);
                EXPECT_EQ(text->property("truncated").toBool(), look.text == kLong);
                const QString typed = text->property("text").toString();
                EXPECT_NEAR(width, look.text == kLong ? width : metrics.horizontalAdvance(typed) / factor, 2);
            }
        }
    for (auto it = glass.begin(); it != glass.end(); std::advance(it, 2)) // "opaque" sorts before "transparent"
        EXPECT_GT(it.value(), std::next(it).value() + 40) << it.key().toStdString();

    pointWeatherServicesAt("");
    BatteryMonitor::shared().setTextSource(nullptr);
    MusicMonitor::shared().replaceRunner(std::move(previous));
    ClockWidgetModel::setTimeSource({});
}

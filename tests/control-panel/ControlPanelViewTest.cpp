#include "ControlPanelModel.h"
#include "PixelChecks.h"
#include "ReplayServer.h"
#include "SettingsManager.h"
#include "ViewHarness.h"
#include "WeatherFixtures.h"
#include "XSession.h"

#include <QTest>
#include <gtest/gtest.h>

namespace {

const QString kUrl = "qrc:/Ombrix/ControlPanel/ControlPanelView.qml";

void resetStore()
{
    auto& s = SettingsManager::shared();
    for (const QString name : {"clock", "weather", "battery", "music"})
        s.setProperty((name + "Enabled").toLatin1(), false);
    s.saveSetting(QStringList{"macbook", "watch", "mouse", "airpods"}, "widget.battery.visibleDevices");
    s.loadSettings();
}

QPoint centreOf(QQuickItem* item, QQuickItem* root)
{
    return item->mapToItem(root, QPointF(item->width() / 2, item->height() / 2)).toPoint();
}

bool near(const QColor& c, const QColor& want, int tolerance = 12)
{
    return std::abs(c.red() - want.red()) <= tolerance && std::abs(c.green() - want.green()) <= tolerance &&
           std::abs(c.blue() - want.blue()) <= tolerance;
}

} // namespace

TEST(ControlPanelView, WidgetsTabLooksAndOpensCardsOnlyWhileOn)
{
    resetStore();
    ViewHarness view(kUrl, 420, 600);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    auto* clockCard = view.find<QQuickItem>("card-clock");
    ASSERT_TRUE(clockCard);
    const double closedHeight = clockCard->height();
    QImage off = view.grab();
    off.save(artifactsDir() + "/panel-widgets-all-off.png");

    SettingsManager::shared().setClockEnabled(true);
    SettingsManager::shared().setBatteryEnabled(true);
    QImage on = view.grab();
    on.save(artifactsDir() + "/panel-widgets-clock-battery-on.png");
    EXPECT_GT(clockCard->height(), closedHeight + 60);
    EXPECT_EQ(view.find<QQuickItem>("card-weather")->height(), closedHeight);

    // The clock card's switch is accent blue while on; the card stands lighter than the panel.
    auto* sw = clockCard->findChild<QQuickItem*>("cardSwitch");
    const QPoint trackPoint = sw->mapToItem(view.root(), QPointF(8, sw->height() / 2)).toPoint();
    EXPECT_TRUE(near(on.pixelColor(trackPoint), QColor(0, 122, 255))) << on.pixelColor(trackPoint).name().toStdString();
    EXPECT_FALSE(near(off.pixelColor(trackPoint), QColor(0, 122, 255)));
    const QPoint inCard = clockCard->mapToItem(view.root(), QPointF(clockCard->width() - 60, 12)).toPoint();
    const QPoint outside = clockCard->mapToItem(view.root(), QPointF(-12, 12)).toPoint();
    EXPECT_GT(brightness(on, QRect(inCard, QSize(4, 4))), brightness(on, QRect(outside, QSize(4, 4))));
    // The header's logo runs from accent blue (top leading) towards indigo.
    auto* logo = view.find<QQuickItem>("logo");
    const QPoint logoTop = logo->mapToItem(view.root(), QPointF(4, 4)).toPoint();
    EXPECT_TRUE(near(on.pixelColor(logoTop), QColor(0, 122, 255), 30)) << on.pixelColor(logoTop).name().toStdString();

    // The options' shade stops at the card's rounded corner: there the panel shows, as beside the card.
    const QPoint corner = clockCard->mapToItem(view.root(), QPointF(1, clockCard->height() - 2)).toPoint();
    const QPoint beside = clockCard->mapToItem(view.root(), QPointF(-6, clockCard->height() - 2)).toPoint();
    EXPECT_NEAR(brightness(on, QRect(corner, QSize(1, 1))), brightness(on, QRect(beside, QSize(1, 1))), 2);
    // The card's symbol is an 18-point glyph, 21 across (its dim white, off, is steady to measure);
    // the rows' labels are at 12.5.
    const QRect iconBox(clockCard->mapToItem(view.root(), QPointF(14, 14)).toPoint(), QSize(38, 38));
    const QRect icon = boundsOf(off, iconBox, [](const QColor& c) { return qGray(c.rgb()) > 130; });
    EXPECT_NEAR(icon.width(), 21, 1.5);
    EXPECT_NEAR(icon.height(), 21, 1.5);
    for (const char* row : {"clickThrough-clock", "size-clock"}) {
        auto* label = view.find<QQuickItem>(row)->findChild<QQuickItem*>("label");
        EXPECT_NEAR(betweenWholeSizes(label->property("font").value<QFont>(), 12, label->property("text").toString(),
                                      label->implicitWidth()),
                    0.5, 0.2)
            << row;
    }
}

TEST(ControlPanelView, PickersListKeysInAscendingOrder)
{
    resetStore();
    SettingsManager::shared().setClockEnabled(true);
    ViewHarness view(kUrl, 420, 600);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    struct Case {
        const char* picker;
        QStringList texts;
    };
    const QList<Case> cases = {
        {"size-clock", {"Medio (4x2)", "Piccolo (2x2)"}},
        {"style-clock", {"Analogico", "Digitale"}},
        {"theme", {"Liquid Glass Opaco", "Liquid Glass Trasparente"}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.picker);
        auto* row = view.find<QQuickItem>(c.picker);
        ASSERT_TRUE(row);
        QStringList texts;
        for (const QVariant& e : row->property("entries").toList())
            texts << e.toMap().value("text").toString();
        EXPECT_EQ(texts, c.texts);
    }
    // A stored value outside the keys shows nothing chosen.
    SettingsManager::shared().setClockSize("large");
    auto* combo = view.find<QQuickItem>("size-clock")->findChild<QQuickItem*>("picker");
    EXPECT_EQ(combo->property("currentIndex").toInt(), -1);
}

TEST(ControlPanelView, OnlyTheCheckboxItselfFlipsIt)
{
    resetStore();
    SettingsManager::shared().setBatteryEnabled(true);
    ViewHarness view(kUrl, 420, 600);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    view.grab();
    auto* mouse = view.find<QQuickItem>("device-mouse");
    ASSERT_TRUE(mouse);
    auto* box = findItem(mouse, "box");
    auto* label = findItem(mouse, "label");
    QTest::mouseClick(view.window(), Qt::LeftButton, {}, centreOf(label, view.root()));
    QTest::qWait(50);
    EXPECT_TRUE(SettingsManager::shared().batteryVisibleDevices().contains("mouse"));
    QTest::mouseClick(view.window(), Qt::LeftButton, {}, centreOf(box, view.root()));
    EXPECT_TRUE(
        XSession::waitFor([] { return !SettingsManager::shared().batteryVisibleDevices().contains("mouse"); }, 2000));
    SettingsManager::shared().loadSettings();
    EXPECT_EQ(SettingsManager::shared().batteryVisibleDevices(), (QStringList{"macbook", "watch", "airpods"}));
}

TEST(ControlPanelView, SettingsTabKeepsStateAcrossTabSwitches)
{
    resetStore();
    SettingsManager::shared().setGlassTheme("transparent");
    SettingsManager::shared().saveWeatherSettings(WeatherSettings{true, "Roma, Italia", 41.9, 12.5});
    ViewHarness view(kUrl, 420, 600);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    auto* model = view.root()->property("model").value<ControlPanelModel*>();
    ASSERT_TRUE(model);
    EXPECT_FALSE(model->weatherAutoMode()); // taken from the store on appearing
    QTest::mouseClick(view.window(), Qt::LeftButton, {}, centreOf(view.find<QQuickItem>("tab-settings"), view.root()));
    ASSERT_TRUE(XSession::waitFor([&] { return model->activeTab() == "settings"; }, 2000));
    QImage img = view.grab();
    img.save(artifactsDir() + "/panel-settings.png");
    EXPECT_TRUE(view.find<QQuickItem>("citySection")->isVisible());
    EXPECT_EQ(view.find<QQuickItem>("cityField")->property("text").toString(), "Roma, Italia");
    // The save button in accent blue, reading "Salva".
    auto* save = view.find<QQuickItem>("saveButton");
    EXPECT_TRUE(near(img.pixelColor(save->mapToItem(view.root(), QPointF(3, save->height() / 2)).toPoint()),
                     QColor(0, 122, 255)));
    EXPECT_EQ(view.find<QQuickItem>("saveLabel")->property("text").toString(), "Salva");
    // The theme picker's longest entry fits its fixed width.
    auto* theme = view.find<QQuickItem>("theme")->findChild<QQuickItem*>("pickerText");
    EXPECT_EQ(theme->property("text").toString(), "Liquid Glass Trasparente");
    EXPECT_FALSE(theme->property("truncated").toBool());
    model->setManualCity("Napoli");
    model->setActiveTab("widgets");
    model->setActiveTab("settings");
    EXPECT_EQ(view.find<QQuickItem>("cityField")->property("text").toString(), "Napoli");
    model->setWeatherAutoMode(true);
    view.grab();
    EXPECT_FALSE(view.find<QQuickItem>("citySection")->isVisible());
}

TEST(ControlPanelView, ALongStatusLineEndsInAnEllipsisInsideThePanel)
{
    resetStore();
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    pointWeatherServicesAt(server.baseUrl());
    const QByteArray name = QByteArray("Llanfairpwllgwyngyll ").repeated(12).trimmed();
    server.setJson("/v1/search", R"({"results":[{"name":")" + name +
                                     R"(","latitude":53.2,"longitude":-4.2,"country":"Regno Unito"}]})");
    ViewHarness view(kUrl, 420, 600);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    auto* model = view.root()->property("model").value<ControlPanelModel*>();
    model->setActiveTab("settings");
    model->setWeatherAutoMode(false);
    model->setManualCity("Llanfairpwllgwyngyll");
    model->saveManualLocation();
    ASSERT_TRUE(XSession::waitFor([&] { return !model->searchInProgress(); }, 10000));
    view.grab().save(artifactsDir() + "/panel-long-status.png");
    auto* status = view.find<QQuickItem>("geoStatus");
    EXPECT_TRUE(status->property("truncated").toBool());
    EXPECT_LE(status->mapRectToScene(QRectF(0, 0, status->width(), status->height())).right(), 420 - 20);
    pointWeatherServicesAt("");
}

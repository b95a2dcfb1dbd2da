#include "PixelChecks.h"
#include "SettingsManager.h"
#include "ViewHarness.h"
#include "XSession.h"

#include <QTest>
#include <gtest/gtest.h>

TEST(ControlPanelView, CardsAndSwitchesOfBothTabs)
{
    auto& s = SettingsManager::shared();
    for (const QString name : {"clock", "weather", "battery", "music"})
        s.setProperty((name + "Enabled").toLatin1(), name == "battery");
    s.setBatteryVisibleDevices({"macbook", "watch", "mouse", "airpods"});
    ViewHarness view("qrc:/Ombrix/ControlPanel/ControlPanelView.qml", 420, 600);
    ASSERT_TRUE(view.root) << view.errors.toStdString();
    const QImage widgets = view.grab();
    widgets.save(artifactsDir() + "/panel-widgets.png");
    EXPECT_EQ(view.misplaced(QRectF(0, 0, 420, 600)), "");
    // A card opens its options, and its switch turns accent blue, only while its widget is on.
    QQuickItem *on = view.find("card-battery"), *off = view.find("card-weather");
    EXPECT_GT(on->height(), off->height() + 60);
    for (QQuickItem* card : {on, off}) {
        QQuickItem* track = ViewHarness::find(card, "cardSwitch");
        const QColor c = widgets.pixelColor(track->mapToScene(QPointF(8, track->height() / 2)).toPoint());
        EXPECT_EQ(nearColor(c, QColor(0, 122, 255)), card == on) << card->objectName().toStdString();
    }
    // On Linux the panel speaks of Linux and of kinds of device; the keys stay the stored ones.
    QStringList texts = {view.find("subtitle")->property("text").toString()};
    for (const char* key : {"macbook", "watch", "mouse", "airpods"})
        texts << ViewHarness::find(view.find(QString("device-") + key), "label")->property("text").toString();
    EXPECT_EQ(texts, QStringList({"Widget premium per Linux", "Computer", "Smartwatch", "Mouse e tastiere", "Cuffie"}));
    // A device's label leaves its checkbox alone; the box flips it. Then the other tab.
    QQuickItem* mouse = view.find("device-mouse");
    for (QQuickItem* item :
         {ViewHarness::find(mouse, "label"), ViewHarness::find(mouse, "box"), view.find("tab-settings")})
        QTest::mouseClick(view.window.get(), Qt::LeftButton, {},
                          item->mapToScene(item->boundingRect().center()).toPoint());
    EXPECT_EQ(s.batteryVisibleDevices(), QStringList({"macbook", "watch", "airpods"}));
    ASSERT_TRUE(XSession::waitFor([&] { return view.find("settingsTab")->isVisible(); }, 5000));
    view.grab().save(artifactsDir() + "/panel-settings.png");
    EXPECT_EQ(view.misplaced(QRectF(0, 0, 420, 600)), "");
}

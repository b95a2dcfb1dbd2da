#include "PixelChecks.h"
#include "SettingsManager.h"
#include "ViewHarness.h"
#include "XSession.h"

#include <QAccessible>
#include <QTest>
#include <functional>
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

TEST(ControlPanelView, TheKeyboardWorksEveryControlAndAScreenReaderNamesEach)
{
    auto& s = SettingsManager::shared();
    for (const QString name : {"clock", "weather", "battery", "music"})
        s.setProperty((name + "Enabled").toLatin1(), name == "battery");
    s.setProperty("batterySize", "small");
    s.setBatteryVisibleDevices({"macbook"});
    ViewHarness view("qrc:/Ombrix/ControlPanel/ControlPanelView.qml", 420, 600);
    ASSERT_TRUE(view.root) << view.errors.toStdString();
    QQuickWindow* window = view.window.get();
    window->requestActivate();
    ASSERT_TRUE(XSession::waitFor([&] { return window->isActive(); }, 10000)); // keys go to the active window

    // Every control a screen reader meets has a name and tells its state.
    QStringList unnamed, read;
    const QSet<QAccessible::Role> controls = {QAccessible::CheckBox, QAccessible::Button, QAccessible::PageTab,
                                              QAccessible::ComboBox, QAccessible::EditableText};
    std::function<void(QAccessibleInterface*)> walk = [&](QAccessibleInterface* a) {
        if (!a || a->state().invisible)
            return;
        if (controls.contains(a->role())) {
            const QString name = a->text(QAccessible::Name);
            (name.isEmpty() ? unnamed : read) << name + (a->state().checked ? " (acceso)" : "");
        }
        for (int i = 0; i < a->childCount(); ++i)
            walk(a->child(i));
    };
    walk(QAccessible::queryAccessibleInterface(window));
    EXPECT_TRUE(unnamed.isEmpty()) << unnamed.size() << " unnamed of " << read.join(", ").toStdString();
    for (const char* expected : {"Widget", "Impostazioni", "Orologio & Data", "Batteria (acceso)",
                                 "Cliccabile attraverso", "Dimensione widget", "Computer (acceso)", "Chiudi"})
        EXPECT_TRUE(read.contains(expected)) << expected << " not in " << read.join(", ").toStdString();

    // Tab walks the controls; Space flips a switch and a box, arrows pick, Esc closes the list.
    const auto focused = [&] {
        QQuickItem* item = window->activeFocusItem();
        QAccessibleInterface* a = item ? QAccessible::queryAccessibleInterface(item) : nullptr;
        return a ? a->text(QAccessible::Name) : QString();
    };
    const auto tabTo = [&](const QString& name) {
        for (int i = 0; i < 30 && focused() != name; ++i)
            QTest::keyClick(window, Qt::Key_Tab);
        return focused() == name;
    };
    ASSERT_TRUE(tabTo("Batteria"));
    QTest::keyClick(window, Qt::Key_Space);
    EXPECT_FALSE(s.batteryEnabled());
    QTest::keyClick(window, Qt::Key_Return);
    ASSERT_TRUE(s.batteryEnabled());
    ASSERT_TRUE(tabTo("Dimensione widget"));
    QTest::keyClick(window, Qt::Key_Up);
    EXPECT_EQ(s.batterySize(), "medium");
    QQuickItem* picker = window->activeFocusItem();
    QTest::keyClick(window, Qt::Key_Space);
    EXPECT_TRUE(XSession::waitFor(
        [&] { return picker->property("popup").value<QObject*>()->property("visible").toBool(); }, 5000));
    QTest::keyClick(window, Qt::Key_Escape);
    EXPECT_TRUE(XSession::waitFor(
        [&] { return !picker->property("popup").value<QObject*>()->property("visible").toBool(); }, 5000));
    ASSERT_TRUE(tabTo("Smartwatch"));
    QTest::keyClick(window, Qt::Key_Space);
    EXPECT_EQ(s.batteryVisibleDevices(), QStringList({"macbook", "watch"}));
    s.setProperty("batterySize", "small");
}

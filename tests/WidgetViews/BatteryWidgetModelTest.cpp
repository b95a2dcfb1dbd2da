#include "BatteryWidgetModel.h"
#include "../monitors/FakeSources.h"
#include "BatteryMonitor.h"
#include "SettingsManager.h"

#include <QSignalSpy>
#include <QTimer>
#include <gtest/gtest.h>

using namespace batteryrules;

namespace {

BatteryDevice device(const QString& type, qint64 percent, bool charging = false)
{
    return {type + QString::number(percent), type, percent, charging, type};
}

const QStringList allCategories = {"macbook", "watch", "mouse", "airpods"};

} // namespace

TEST(BatteryRules, GlowAndRings)
{
    const BatteryDevice mac = device("macbook", 85, true), mac2 = device("macbook", 10), watch = device("watch", 50),
                        mouse = device("mouse", 64), keyboard = device("keyboard", 70), pad = device("accessory", 70),
                        pods = device("airpods", 30);
    const struct {
        const char* what;
        QList<BatteryDevice> devices;
        QString size;
        QStringList visible;
        QList<BatteryRing> rings;
    } cases[] = {
        {"small: the first computer's large ring, whatever is ticked",
         {mouse, mac, mac2},
         "small",
         {},
         {{mac, true, "Mac di Bo"}}},
        {"small without a computer is empty", {mouse}, "small", allCategories, {}},
        {"without mouse: every input accessory and unknown type hidden",
         {mouse, keyboard, mac2, pad, watch, pods},
         "medium",
         {"macbook", "watch", "airpods"},
         {{mac2, false, "Mac di Bo"}, {watch, false, "watch"}, {pods, false, "airpods"}}},
        {"the first four, in the reading's order",
         {mouse, mac, watch, keyboard, pods},
         "large",
         allCategories,
         {{mouse, false, "mouse"}, {mac, false, "Mac di Bo"}, {watch, false, "watch"}, {keyboard, false, "keyboard"}}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        EXPECT_EQ(ringsFor(c.devices, c.size, c.visible, "Mac di Bo"), c.rings);
    }
    const std::pair<QList<BatteryDevice>, QColor> glows[] = {
        {{device("mouse", 5)}, Qt::transparent},
        {{device("mouse", 1), device("macbook", 20)}, green()},
        {{device("macbook", 19, true)}, orange()},
        {{device("macbook", 19), device("macbook", 90)}, red()},
    };
    for (const auto& [devices, glow] : glows)
        EXPECT_EQ(glowColor(devices), glow) << devices.size();
    EXPECT_EQ(statusText({device("macbook", 85, true), true, ""}), "In carica");
    EXPECT_EQ(statusText({device("macbook", 100), true, ""}), "Alimentazione");
    EXPECT_EQ(statusText({device("mouse", 19), false, ""}), "19%");
    EXPECT_EQ(std::pair(arcColor(19), arcColor(20)), std::pair(red(), green()));
}

TEST(BatteryWidgetModel, ReadsWhileActiveAndRedrawsOnSettings)
{
    auto* texts = new FakeBatteryTexts;
    BatteryMonitor::shared().setTextSource(std::unique_ptr<BatteryTextSource>(texts));
    texts->pmset = "Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t15%; discharging";
    texts->ioreg = "+-o X <class X>\n\"BatteryPercent\" = 64\n\"Product\" = \"Magic Mouse\"\n";
    SettingsManager& settings = SettingsManager::shared();
    settings.setBatterySize("medium");
    BatteryWidgetModel model;
    auto* timer = model.findChild<QTimer*>();
    ASSERT_TRUE(timer);
    const auto labels = [&] {
        QStringList out;
        for (const BatteryRing& ring : model.visibleRings()->rings())
            out << ring.customName;
        return out;
    };
    EXPECT_EQ(std::pair(timer->isActive(), texts->reads), std::pair(false, 0));
    model.setActive(true); // no computer name known: "Computer"
    EXPECT_TRUE(timer->isActive());
    EXPECT_EQ(labels(), QStringList({"Computer", "Magic Mouse"}));
    EXPECT_EQ(SettingsManager::shared().sharedData().battery, model.deviceList());

    // A poll that finds the same reading tells no one; a new one does.
    QSignalSpy glow(&model, &BatteryWidgetModel::glowColorChanged);
    QMetaObject::invokeMethod(timer, "timeout");
    EXPECT_EQ(glow.count(), 0);
    texts->pmset = "Now drawing from 'AC Power'\n 5%; charging";
    QMetaObject::invokeMethod(timer, "timeout");
    EXPECT_EQ(model.glowColor(), orange());

    // Settings redraw from the reading in hand.
    const int reads = texts->reads;
    settings.setBatteryVisibleDevices({"mouse"});
    EXPECT_EQ(labels(), QStringList({"Magic Mouse"}));
    settings.setBatterySize("small");
    EXPECT_EQ(std::pair(labels(), texts->reads), std::pair(QStringList({"Computer"}), reads));
    settings.setBatteryVisibleDevices(allCategories);
    model.setActive(false);
    EXPECT_FALSE(timer->isActive());
    BatteryMonitor::shared().setTextSource(nullptr);
}

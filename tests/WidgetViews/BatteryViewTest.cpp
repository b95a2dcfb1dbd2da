#include "BatteryMonitor.h"
#include "BatteryRingArc.h"
#include "BatteryWidgetModel.h"
#include "HueChecks.h"
#include "PixelChecks.h"
#include "SettingsManager.h"
#include "ViewHarness.h"
#include "XSession.h"

#include <QLineF>
#include <gtest/gtest.h>

namespace {

const QString kView = "qrc:/Ombrix/WidgetViews/BatteryWidgetView.qml";
const QString kComputer = "Portatile di Anna";

// What the fake tools print; the test changes it between refreshes.
struct Readings {
    QString pmset;
    QString ioreg;
    int reads = 0;
};

class FakeTexts : public BatteryTextSource {
  public:
    explicit FakeTexts(Readings& r) : m_r(r) {}
    QString pmsetText() override
    {
        ++m_r.reads;
        return m_r.pmset;
    }
    QString ioregText() override { return m_r.ioreg; }
    QString computerName() override { return kComputer; }

  private:
    Readings& m_r;
};

QString pmset(int percent, bool charging)
{
    return charging ? QString("Now drawing from 'AC Power'\n -InternalBattery-0 (id=1)\t%1%; charging;\n").arg(percent)
                    : QString("Now drawing from 'Battery Power'\n -InternalBattery-0 (id=1)\t%1%; discharging;\n")
                          .arg(percent);
}

QString accessory(const QString& product, int percent)
{
    return QString("+-o AppleDeviceManagementHIDEventService  <class AppleDeviceManagementHIDEventService>\n"
                   "    {\n      \"BatteryPercent\" = %1\n      \"Product\" = \"%2\"\n    }\n")
        .arg(percent)
        .arg(product);
}

// The point `radius` from `centre` at `degrees` clockwise from twelve o'clock.
QPoint onCircle(QPointF centre, double radius, double degrees)
{
    return QLineF::fromPolar(radius, 90 - degrees).translated(centre).p2().toPoint();
}

class BatteryViewTest : public ::testing::Test {
  protected:
    void SetUp() override
    {
        BatteryMonitor::shared().setTextSource(std::make_unique<FakeTexts>(readings));
        resetSettings();
    }
    void TearDown() override
    {
        resetSettings();
        BatteryMonitor::shared().setTextSource(nullptr);
    }
    static void resetSettings()
    {
        auto& s = SettingsManager::shared();
        s.setBatterySize("small");
        s.setGlassTheme("transparent");
        s.setBatteryVisibleDevices({"macbook", "watch", "mouse", "airpods"});
    }

    static BatteryWidgetModel* model(const ViewHarness& view)
    {
        return qobject_cast<BatteryWidgetModel*>(view.root()->property("model").value<QObject*>());
    }
    // The ring of a device type: its frame's centre in the window, or nothing when it isn't shown.
    static std::optional<QPointF> ringCentre(const ViewHarness& view, const QString& type)
    {
        QQuickItem* ring = view.find<QQuickItem>("ring-" + type);
        QQuickItem* frame = ring ? findItem(ring, "ringFrame") : nullptr;
        if (!frame || !ring->isVisible())
            return std::nullopt;
        return frame->mapToScene(QPointF(frame->width() / 2, frame->height() / 2));
    }
    static int ringCount(const ViewHarness& view)
    {
        return view.find<QQuickItem>("ringRepeater")->property("count").toInt();
    }

    Readings readings;
};

} // namespace

TEST_F(BatteryViewTest, SmallRingFollowsTheComputersBattery)
{
    struct Case {
        const char* what;
        int percent;
        bool charging;
        Hue arc;       // along the charged part
        double arcMid; // degrees where the charged part is sampled
        bool closed;   // the arc runs round the whole circle
        Hue glow;
        const char* status;
    };
    const QList<Case> cases = {
        {"15-charging", 15, true, Hue::Red, 27, false, Hue::Orange, "In carica"},
        {"15-battery", 15, false, Hue::Red, 27, false, Hue::Red, "Alimentazione"},
        {"19-battery", 19, false, Hue::Red, 34, false, Hue::Red, "Alimentazione"},
        {"20-charging", 20, true, Hue::Green, 36, false, Hue::Green, "In carica"},
        {"20-battery", 20, false, Hue::Green, 36, false, Hue::Green, "Alimentazione"},
        {"0-battery", 0, false, Hue::None, 0, false, Hue::Red, "Alimentazione"},
        {"100-charging", 100, true, Hue::Green, 180, true, Hue::Green, "In carica"},
        {"999-battery", 999, false, Hue::Green, 180, true, Hue::Green, "Alimentazione"}, // a reading past full
    };
    for (const auto& c : cases)
        for (const QString theme : {"transparent", "opaque"}) {
            const QString tag = QString("battery-small-%1-%2").arg(c.what, theme);
            SCOPED_TRACE(tag.toStdString());
            readings.pmset = pmset(c.percent, c.charging);
            readings.ioreg = accessory("Magic Mouse", 64);
            SettingsManager::shared().setGlassTheme(theme);
            ViewHarness view(kView, 170, 170);
            ASSERT_TRUE(view.root()) << view.errors().toStdString();
            const QImage img = view.grab();
            img.save(artifactsDir() + "/" + tag + ".png");

            // Only the computer's ring at this size, centred across the content.
            ASSERT_EQ(ringCount(view), 1);
            const auto centre = ringCentre(view, "macbook");
            ASSERT_TRUE(centre);
            EXPECT_NEAR(centre->x(), 85, 0.5);

            if (c.arc != Hue::None) {
                EXPECT_EQ(paintHueNear(img, onCircle(*centre, 48, c.arcMid)), c.arc);
            }
            // Past the end of the arc (and its round cap) lies only the faint track.
            for (double a = 0; a < 360; a += 15) {
                const Hue expected = c.closed ? c.arc : Hue::None;
                if (c.closed || (a > c.percent * 3.6 + 8 && a < 352)) {
                    EXPECT_EQ(paintHueNear(img, onCircle(*centre, 48, a)), expected) << a;
                }
            }
            // The track is there even at 0: the ring is lighter than the glass just inside it.
            const QPoint track = onCircle(*centre, 48, 200), inside = onCircle(*centre, 38, 200);
            EXPECT_GT(img.pixelColor(track).alpha(), img.pixelColor(inside).alpha());

            // The bolt sits at the lower right of the centre only while charging.
            const QRect bolt(int(centre->x()) + 13, int(centre->y()) + 13, 14, 14);
            if (c.charging)
                EXPECT_GT(countPaint(img, bolt, Hue::Yellow), 15);
            else
                EXPECT_EQ(countPaint(img, bolt, Hue::Yellow), 0);
            // The percent stands in white in the middle.
            const QRect middle(int(centre->x()) - 20, int(centre->y()) - 10, 40, 20);
            EXPECT_GT(brightness(img, middle), brightness(img, middle.translated(0, 30)) + 20);

            EXPECT_EQ(hueOf(img.pixelColor(85, 164)), c.glow);
            EXPECT_EQ(view.find<QQuickItem>("status")->property("text").toString(), c.status);
            auto* name = view.find<QQuickItem>("name");
            EXPECT_EQ(name->property("text").toString(), kComputer);
            EXPECT_NEAR(betweenWholeSizes(name->property("font").value<QFont>(), 11, kComputer, name->implicitWidth()),
                        0.5, 0.2);
        }
}

TEST_F(BatteryViewTest, MediumShowsARowOfTheVisibleDevices)
{
    struct Case {
        const char* what;
        QString ioreg;
        QStringList visible;
        QStringList rings; // device types, left to right
        QStringList names;
    };
    const QString three = accessory("Magic Mouse", 64) + accessory("Studio Headphones", 40);
    const QList<Case> cases = {
        {"three",
         three,
         {"macbook", "watch", "mouse", "airpods"},
         {"macbook", "mouse", "airpods"},
         {kComputer, "Magic Mouse", "Studio Headphones"}},
        {"no-mouse", three, {"macbook", "watch", "airpods"}, {"macbook", "airpods"}, {kComputer, "Studio Headphones"}},
        {"first-four",
         three + accessory("Apple Watch", 90) + accessory("Magic Keyboard", 70),
         {"macbook", "watch", "mouse", "airpods"},
         {"macbook", "mouse", "airpods", "watch"},
         {kComputer, "Magic Mouse", "Studio Headphones", "Apple Watch"}},
        {"unknown-size", accessory("Apple Pencil", 10), {"mouse"}, {"pencil"}, {"Apple Pencil"}},
    };
    for (const auto& c : cases)
        for (const QString theme : {"transparent", "opaque"}) {
            const QString tag = QString("battery-medium-%1-%2").arg(c.what, theme);
            SCOPED_TRACE(tag.toStdString());
            readings.pmset = pmset(15, true);
            readings.ioreg = c.ioreg;
            auto& s = SettingsManager::shared();
            s.setGlassTheme(theme);
            s.setBatterySize(QString(c.what) == "unknown-size" ? "huge" : "medium");
            s.setBatteryVisibleDevices(c.visible);
            ViewHarness view(kView, 340, 170);
            ASSERT_TRUE(view.root()) << view.errors().toStdString();
            const QImage img = view.grab();
            img.save(artifactsDir() + "/" + tag + ".png");

            ASSERT_EQ(ringCount(view), c.rings.size());
            QList<Hue> arcs; // red only for the computer at 15 % and the pencil at 10 %
            for (const QString& type : c.rings)
                arcs.append(type == "macbook" || type == "pencil" ? Hue::Red : Hue::Green);
            EXPECT_EQ(paintRuns(img, 18, 120), arcs);
            // Equal shares of the 304 wide content, 12 apart.
            const double share = (304.0 - 12 * (c.rings.size() - 1)) / c.rings.size();
            for (int i = 0; i < c.rings.size(); ++i) {
                SCOPED_TRACE(c.rings[i].toStdString());
                const auto centre = ringCentre(view, c.rings[i]);
                ASSERT_TRUE(centre);
                EXPECT_NEAR(centre->x(), 18 + i * (share + 12) + share / 2, 1);
                QQuickItem* ring = view.find<QQuickItem>("ring-" + c.rings[i]);
                EXPECT_EQ(findItem(ring, "name")->property("text").toString(), c.names[i]);
                EXPECT_EQ(paintHueNear(img, onCircle(*centre, 22, 10)), arcs[i]); // 10 degrees into the arc
                // The icon in the middle and the two labels below are drawn.
                const QRectF ringBox(centre->x() - 7, centre->y() - 7, 14, 14);
                EXPECT_GT(brightness(img, ringBox.toRect()), 40);
                const QRect labels(int(centre->x()) - 20, int(centre->y()) + 27, 40, 26);
                EXPECT_GT(brightness(img, labels), brightness(img, labels.translated(0, 30)) + 10);
            }
            // The bolt belongs to the charging computer alone.
            const auto first = ringCentre(view, c.rings[0]);
            const QRect bolt(int(first->x()) + 6, int(first->y()) + 6, 12, 12);
            EXPECT_EQ(countPaint(img, bolt, Hue::Yellow) > 10, c.rings[0] == "macbook");
            EXPECT_EQ(hueOf(img.pixelColor(170, 164)), Hue::Orange);
        }
}

TEST_F(BatteryViewTest, UntickingMouseHidesItsRingAtOnceWithoutARefresh)
{
    readings.pmset = pmset(64, false);
    readings.ioreg = accessory("Magic Mouse", 64) + accessory("Studio Headphones", 40);
    SettingsManager::shared().setBatterySize("medium");
    ViewHarness view(kView, 340, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    view.grab().save(artifactsDir() + "/battery-untick-before.png");
    ASSERT_TRUE(ringCentre(view, "mouse"));
    const int reads = readings.reads;

    SettingsManager::shared().setBatteryVisibleDevices({"macbook", "watch", "airpods"});
    EXPECT_EQ(ringCount(view), 2);
    const QImage img = view.grab();
    img.save(artifactsDir() + "/battery-untick-after.png");
    EXPECT_FALSE(ringCentre(view, "mouse"));
    const auto headphones = ringCentre(view, "airpods");
    ASSERT_TRUE(headphones);
    EXPECT_NEAR(headphones->x(), 18 + 146 + 12 + 73, 1);
    EXPECT_EQ(paintHueNear(img, onCircle(*headphones, 22, 10)), Hue::Green);
    EXPECT_EQ(readings.reads, reads);

    // Ticked again, it comes back in its place from the list in hand.
    SettingsManager::shared().setBatteryVisibleDevices({"macbook", "watch", "airpods", "mouse"});
    EXPECT_EQ(ringCount(view), 3);
    EXPECT_TRUE(ringCentre(view, "mouse"));
    EXPECT_EQ(readings.reads, reads);
}

TEST_F(BatteryViewTest, ANewPercentAnimatesTheSameRing)
{
    readings.pmset = pmset(20, false);
    ViewHarness view(kView, 170, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    view.grab();
    auto* arc = view.find<BatteryRingArc>("arc");
    ASSERT_TRUE(arc);
    EXPECT_DOUBLE_EQ(arc->progress(), 0.2); // the first reading is drawn at once

    readings.pmset = pmset(80, false);
    model(view)->refreshDevices();
    // The ring stays; its arc sets off towards 0.8 rather than jumping there.
    EXPECT_EQ(view.find<BatteryRingArc>("arc"), arc);
    EXPECT_LT(arc->progress(), 0.5);
    EXPECT_TRUE(XSession::waitFor([&] { return arc->progress() > 0.3 && arc->progress() < 0.7; }, 2000));
    EXPECT_TRUE(XSession::waitFor([&] { return arc->progress() == 0.8; }, 3000));
    view.grab().save(artifactsDir() + "/battery-small-animated-80.png");
}

TEST_F(BatteryViewTest, NamesAreShownAsTypedOnOneElidedLine)
{
    readings.pmset = pmset(50, false);
    readings.ioreg = accessory("<b>Magic</b> Mouse di Anna con un nome molto lungo", 50);
    SettingsManager::shared().setBatterySize("medium");
    ViewHarness view(kView, 340, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    view.grab().save(artifactsDir() + "/battery-medium-long-name.png");
    QQuickItem* name = findItem(view.find<QQuickItem>("ring-mouse"), "name");
    ASSERT_TRUE(name);
    EXPECT_EQ(name->property("text").toString(), "<b>Magic</b> Mouse di Anna con un nome molto lungo");
    EXPECT_EQ(name->property("textFormat").toInt(), Qt::PlainText);
    EXPECT_TRUE(name->property("truncated").toBool());
    EXPECT_EQ(name->property("lineCount").toInt(), 1);
}

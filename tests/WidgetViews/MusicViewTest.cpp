#include "../monitors/FakeScriptRunner.h"
#include "ColorMatch.h"
#include "ImageServer.h"
#include "MusicMonitor.h"
#include "MusicScripts.h"
#include "MusicVisualizerModel.h"
#include "MusicWidgetModel.h"
#include "PixelChecks.h"
#include "RoundedShadow.h"
#include "SettingsManager.h"
#include "ViewHarness.h"
#include "XSession.h"

#include <QFontMetricsF>
#include <QSignalSpy>
#include <QTest>
#include <gtest/gtest.h>

namespace {

const QString kView = "qrc:/Ombrix/WidgetViews/MusicWidgetView.qml";
const QColor kCover(40, 110, 220); // a blue apart from both source colours
const QColor kGreen(29, 185, 84);
const QColor kPink(255, 55, 95);

// Pixels of `img` inside `r` that differ from `ref` by more than 40 in some channel, alpha included.
int countApart(const QImage& img, const QRect& r, const QColor& ref)
{
    int n = 0;
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) {
            const QColor c = img.pixelColor(x, y);
            n += !nearColor(c, ref, 40) || std::abs(c.alpha() - ref.alpha()) > 40 ? 1 : 0;
        }
    return n;
}

class MusicViewTest : public ::testing::Test {
  protected:
    void SetUp() override
    {
        ASSERT_TRUE(images.isListening());
        images.serve("/cover.png", ImageServer::png(cover()));
        // Slow enough for a test to watch the download end.
        images.serve("/missing.png", "gone", 404, "text/plain", 300);
        auto fake = std::make_unique<FakeScriptRunner>();
        runner = fake.get();
        previous = MusicMonitor::shared().replaceRunner(std::move(fake));
        runner->replies[musicscript::isRunning(musicscript::spotify)] = "true";
        runner->replies[musicscript::isRunning(musicscript::music)] = "false";
        settings().setGlassTheme("transparent");
        settings().setMusicSize("medium");
        settings().setSharedData(SharedWidgetData());
    }
    void TearDown() override { MusicMonitor::shared().replaceRunner(std::move(previous)); }

    static SettingsManager& settings() { return SettingsManager::shared(); }
    static QImage cover()
    {
        QImage image(64, 64, QImage::Format_RGB32);
        image.fill(kCover);
        return image;
    }
    // What the players answer: `source` "spotify" or "music" plays; anything else is paused.
    void play(const QString& source, const QString& track = "Bohemian Rhapsody", const QString& artist = "Queen",
              const QString& artworkPath = {})
    {
        const QString art = artworkPath.isEmpty() ? QString() : images.url(artworkPath);
        runner->replies[musicscript::nowPlaying(musicscript::spotify)] =
            source == "spotify" ? QStringList{track, artist, art, "spotify"}.join("|||") : "";
        runner->replies[musicscript::nowPlaying(musicscript::music)] =
            source == "music" ? QStringList{track, artist, "", "music"}.join("|||") : "";
    }
    static MusicWidgetModel* model(const ViewHarness& view)
    {
        return qobject_cast<MusicWidgetModel*>(view.root()->property("model").value<QObject*>());
    }
    static QString layoutCase(const ViewHarness& view) { return view.root()->property("layoutCase").toString(); }
    // Where a named item sits in the view, in the view's own pixels.
    static QRect placeOf(const ViewHarness& view, const QString& name)
    {
        QQuickItem* item = view.find<QQuickItem>(name);
        return item ? item->mapRectToItem(view.root(), item->boundingRect()).toRect() : QRect();
    }
    static QQuickItem* visibleItem(const ViewHarness& view, const QString& name)
    {
        QQuickItem* item = view.find<QQuickItem>(name);
        return item && item->isVisible() ? item : nullptr;
    }
    int asked(const QString& script) const { return int(runner->asked.count(script)); }

    ImageServer images;
    FakeScriptRunner* runner = nullptr;
    std::unique_ptr<ScriptRunner> previous;
};

} // namespace

TEST(RoundedShadowRules, DistanceToARoundedRectangle)
{
    const QSizeF box(100, 60);
    const std::tuple<QPointF, qreal, qreal> cases[] = {
        {{50, 30}, 10, -30},                    // centre: the nearer side is 30 away
        {{0, 30}, 10, 0},                       // on the left edge
        {{-5, 30}, 10, 5},                      // outside, beside a straight side
        {{0, 0}, 0, 0},                         // square corner
        {{0, 0}, 10, 10 * std::sqrt(2.0) - 10}, // cut corner: outside the arc
        {{-3, -4}, 0, 5},                       // beyond a square corner
        {{50, 30}, 500, -30},                   // a radius too large is held to half the side
    };
    for (const auto& [p, radius, expected] : cases)
        EXPECT_NEAR(RoundedShadow::distance(p, box, radius), expected, 1e-9) << p.x() << "," << p.y() << " r" << radius;
}

TEST(RoundedShadowRules, FadesFromFullUnderTheShapeToNothingAtTheBorder)
{
    const QImage img = RoundedShadow::shadowImage(QSizeF(40, 40), 14, 10, QColor(0, 0, 0, 115));
    ASSERT_EQ(img.size(), QSize(60, 60));
    EXPECT_NEAR(qAlpha(img.pixel(30, 30)), 115, 1);
    EXPECT_NEAR(qAlpha(img.pixel(30, 10)), 115 / 2, 6); // on the shape's top edge
    EXPECT_LE(qAlpha(img.pixel(30, 0)), 4);
    EXPECT_LE(qAlpha(img.pixel(0, 0)), 1);
    int last = 0;
    for (int y = 0; y <= 30; ++y) { // never lighter going inwards
        EXPECT_GE(qAlpha(img.pixel(30, y)), last) << y;
        last = qAlpha(img.pixel(30, y));
    }
    // The cut corner is lighter than the straight edge at the same depth.
    EXPECT_LT(qAlpha(img.pixel(12, 12)), qAlpha(img.pixel(30, 12)));
    EXPECT_TRUE(RoundedShadow::shadowImage(QSizeF(0, 0), 14, 0, Qt::black).isNull());
}

TEST_F(MusicViewTest, ThreeCasesBothSourcesBothThemes)
{
    struct Look {
        QString tag, size, source, theme;
        bool artwork;
        QString expectedCase;
    };
    const QList<Look> looks = {
        {"waiting-small", "small", "", "transparent", false, "waiting"},
        {"waiting-medium", "medium", "", "opaque", false, "waiting"},
        {"small-spotify-art", "small", "spotify", "transparent", true, "small"},
        {"small-music", "small", "music", "opaque", false, "small"},
        {"medium-spotify-art", "medium", "spotify", "transparent", true, "medium"},
        {"medium-spotify-art", "medium", "spotify", "opaque", true, "medium"},
        {"medium-music", "medium", "music", "transparent", false, "medium"},
        {"medium-music", "medium", "music", "opaque", false, "medium"},
        {"medium-spotify-noart", "medium", "spotify", "transparent", false, "medium"},
    };
    QMap<QString, QImage> shots;
    for (const auto& look : looks) {
        const QString tag = "music-" + look.tag + "-" + look.theme;
        SCOPED_TRACE(tag.toStdString());
        settings().setMusicSize(look.size);
        settings().setGlassTheme(look.theme);
        play(look.source, "Bohemian Rhapsody", "Queen", look.artwork ? "/cover.png" : "");
        const int w = look.size == "medium" ? 340 : 170;
        ViewHarness view(kView, w, 170);
        ASSERT_TRUE(view.root()) << view.errors().toStdString();
        ASSERT_EQ(layoutCase(view), look.expectedCase);
        if (look.artwork) {
            ASSERT_TRUE(XSession::waitFor([&] { return model(view)->hasImage(); }, 10000));
        }
        const QImage img = view.grab();
        img.save(artifactsDir() + "/" + tag + ".png");
        shots.insert(tag, img);

        const bool playing = look.expectedCase != "waiting";
        const bool medium = look.expectedCase == "medium";
        const QColor sourceColor = look.source == "spotify" ? kGreen : kPink;
        for (const QPoint p : {QPoint(1, 1), QPoint(w - 2, 1), QPoint(1, 168), QPoint(w - 2, 168)})
            EXPECT_EQ(img.pixelColor(p).alpha(), 0);
        // The frame glows only while playing: the glow layer is then present at all.
        EXPECT_EQ(view.find<QQuickItem>("glass")->property("glowing").toBool(), playing);
        // The bars, and their timer, exist only in the medium playing layout.
        const auto* visualizer = view.find<QQuickItem>("visualizer");
        EXPECT_EQ(visualizer != nullptr, medium);
        if (visualizer) {
            EXPECT_TRUE(view.root()->findChild<MusicVisualizerModel*>()->isTicking());
            // Four bars, each at least 4 high, standing on the bottom of their 20-high row.
            const QRect row = placeOf(view, "visualizer");
            EXPECT_EQ(row.size(), QSize(25, 20));
            EXPECT_GT(countNear(img, row.adjusted(0, 17, 0, 0), sourceColor), 24);
            EXPECT_EQ(countNear(img, row.translated(0, 21), sourceColor), 0);
        }

        if (!playing) {
            EXPECT_TRUE(visibleItem(view, "waiting"));
            // The note stands out from the glass around it, over a line of dim white text.
            const QColor glass = img.pixelColor(w / 2, 30);
            EXPECT_GT(countApart(img, placeOf(view, "waitingNote"), glass), 100);
            EXPECT_EQ(countApart(img, QRect(w / 2 - 17, 22, 34, 30), glass), 0);
            const QRect text = placeOf(view, "waitingText");
            EXPECT_GT(brightness(img, text), brightness(img, text.translated(0, 20)) + 8);
            EXPECT_FALSE(view.find<QQuickItem>("artView"));
            continue;
        }
        const QRect art = placeOf(view, "artView");
        EXPECT_EQ(art, medium ? QRect(18, 23, 124, 124) : QRect(44, art.top(), 82, 82));
        const QRect inner = art.adjusted(20, 20, -20, -20);
        if (look.artwork) {
            EXPECT_TRUE(visibleItem(view, "artwork"));
            EXPECT_FALSE(visibleItem(view, "artPlaceholder"));
            EXPECT_GT(countNear(img, inner, kCover), inner.width() * inner.height() / 2);
            EXPECT_EQ(model(view)->glowColor().rgb(), kCover.rgb());
        } else {
            EXPECT_FALSE(visibleItem(view, "artwork"));
            EXPECT_TRUE(visibleItem(view, "artPlaceholder"));
            EXPECT_EQ(countNear(img, inner, kCover), 0);
            // A warm tint over the glass, darker than the pink itself.
            const QColor corner = img.pixelColor(art.topLeft() + QPoint(8, 8));
            EXPECT_GT(corner.red() - corner.blue(), 8);
        }
        if (medium) {
            EXPECT_EQ(placeOf(view, "previousButton"), QRect(162, 116, 32, 32));
            EXPECT_EQ(placeOf(view, "playPauseButton"), QRect(210, 112, 40, 40));
            EXPECT_EQ(placeOf(view, "nextButton"), QRect(266, 116, 32, 32));
            // Above the symbol, inside the circle: the source colour.
            EXPECT_TRUE(nearColor(img.pixelColor(230, 117), sourceColor))
                << img.pixelColor(230, 117).name().toStdString();
            EXPECT_TRUE(nearColor(img.pixelColor(230, 147), sourceColor));
            auto* source = view.find<QQuickItem>("source");
            EXPECT_EQ(source->property("text").toString(), look.source == "spotify" ? "Spotify" : "Apple Music");
            EXPECT_NEAR(betweenWholeSizes(source->property("font").value<QFont>(), 9,
                                          source->property("text").toString(), source->implicitWidth(), 0.8),
                        0.5, 0.2);
            // The glyphs as large as those of 12 and 14 point fonts, white on the dark glass.
            if (look.theme == "opaque") {
                const QRect previous = boundsOf(img, QRect(162, 116, 32, 32), bright);
                const QRect playPause = boundsOf(img, QRect(210, 112, 40, 40), bright);
                EXPECT_NEAR(previous.width(), 19, 2);
                EXPECT_NEAR(previous.height(), 11, 2);
                EXPECT_NEAR(playPause.width(), 22, 2);
                EXPECT_NEAR(playPause.height(), 13, 2);
            }
        }
    }
    // The glow rises from the bottom edge only while playing: pink for Apple Music.
    const QColor glow = shots["music-medium-music-opaque"].pixelColor(170, 164);
    const QColor none = shots["music-waiting-medium-opaque"].pixelColor(170, 164);
    EXPECT_GT(glow.red() - glow.blue(), none.red() - none.blue() + 15);
    // The opaque glass is darker than the transparent one, playing or not.
    for (const QString key : {"medium-spotify-art", "medium-music"}) {
        const QRect probe(310, 55, 8, 8);
        EXPECT_LT(brightness(shots["music-" + key + "-opaque"], probe),
                  brightness(shots["music-" + key + "-transparent"], probe))
            << key.toStdString();
    }
}

TEST_F(MusicViewTest, ButtonsTakeTheirPressesAndDriveThePlayer)
{
    play("spotify");
    ViewHarness view(kView, 340, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    ASSERT_EQ(layoutCase(view), "medium");
    const struct {
        QString button, action;
    } presses[] = {{"previousButton", "previous"}, {"nextButton", "next"}, {"playPauseButton", "playpause"}};
    for (const auto& p : presses) {
        SCOPED_TRACE(p.button.toStdString());
        const QString script = *musicscript::control(p.action, musicscript::spotify);
        const QPoint centre = placeOf(view, p.button).center();
        QTest::mousePress(view.window(), Qt::LeftButton, {}, centre);
        // The button holds the press, so the window does not start a drag.
        auto* area = view.find<QQuickItem>(p.button)->findChild<QQuickItem*>("pressArea");
        ASSERT_TRUE(area);
        EXPECT_TRUE(area->property("pressed").toBool());
        QTest::mouseRelease(view.window(), Qt::LeftButton, {}, centre);
        EXPECT_EQ(asked(script), 1);
    }
    // A press on the glass between the buttons asks nothing of the player.
    const int before = int(runner->asked.size());
    QTest::mouseClick(view.window(), Qt::LeftButton, {}, QPoint(202, 132));
    EXPECT_EQ(int(runner->asked.size()), before);
}

TEST_F(MusicViewTest, APauseTakesTheLayoutAndTheBarsAwayAtOnce)
{
    play("spotify", "Song", "Band", "/cover.png");
    ViewHarness view(kView, 340, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    ASSERT_TRUE(XSession::waitFor([&] { return model(view)->hasImage(); }, 10000));
    ASSERT_TRUE(view.find<QQuickItem>("visualizer"));
    // After a few ticks every bar stands between 4 and 20 high on the row's base line: down the
    // middle of each 3.5-wide bar, 7 apart, the colour fills the lowest rows and at most 20.
    QTest::qWait(500);
    const QImage bars = view.grab();
    const QRect row = placeOf(view, "visualizer");
    for (int i = 0; i < 4; ++i) {
        const int x = row.left() + 7 * i + 1;
        const int filled = countNear(bars, QRect(x, row.top() - 4, 1, 28), kGreen);
        EXPECT_GE(filled, 3) << i;
        EXPECT_LE(filled, 20) << i;
        EXPECT_EQ(countNear(bars, QRect(x, row.bottom() - 2, 1, 2), kGreen), 2) << i;
    }

    play("paused");
    model(view)->refreshMusic();
    EXPECT_EQ(layoutCase(view), "waiting");
    const QImage img = view.grab();
    img.save(artifactsDir() + "/music-paused-medium.png");
    EXPECT_FALSE(view.find<QQuickItem>("visualizer"));
    EXPECT_FALSE(view.find<QQuickItem>("playPauseButton"));
    EXPECT_FALSE(view.find<QQuickItem>("glass")->property("glowing").toBool());
    EXPECT_EQ(countNear(img, QRect(0, 0, 340, 170), kGreen), 0);
    EXPECT_EQ(countNear(img, QRect(0, 0, 340, 170), kCover), 0);

    // Playing again: fresh bars, all at rest.
    play("spotify", "Song", "Band", "/cover.png");
    model(view)->refreshMusic();
    const auto heights = view.root()->findChild<MusicVisualizerModel*>()->heights();
    EXPECT_EQ(heights, QList<qreal>(4, 4.0));
}

TEST_F(MusicViewTest, SizeChangeRedrawsFromTheStateInHand)
{
    play("music");
    ViewHarness view(kView, 340, 170);
    ASSERT_TRUE(view.root()) << view.errors().toStdString();
    const int readings = asked(musicscript::nowPlaying(musicscript::music));
    const struct {
        QString size, expected;
    } steps[] = {{"small", "small"}, {"medium", "medium"}, {"large", "medium"}, {"Small", "medium"}, {"", "medium"}};
    for (const auto& s : steps) {
        settings().setMusicSize(s.size);
        EXPECT_EQ(layoutCase(view), s.expected) << s.size.toStdString();
    }
    EXPECT_EQ(asked(musicscript::nowPlaying(musicscript::music)), readings);
}

TEST_F(MusicViewTest, OutsideTextsStayPlainAndOnOneLine)
{
    const QString longTitle = "A title far too long for the widget, on and on and on without end";
    const struct {
        QString size, track;
        bool truncated;
    } cases[] = {{"medium", longTitle, true}, {"small", longTitle, true}, {"small", "<i>y</i>&amp;", false}};
    for (const auto& c : cases) {
        SCOPED_TRACE((c.size + " " + c.track).toStdString());
        settings().setMusicSize(c.size);
        play("spotify", c.track, "<u>Artist</u>");
        ViewHarness view(kView, c.size == "small" ? 170 : 340, 170);
        ASSERT_TRUE(view.root()) << view.errors().toStdString();
        auto* track = view.find<QQuickItem>("track");
        ASSERT_TRUE(track);
        EXPECT_EQ(track->property("lineCount").toInt(), 1);
        EXPECT_EQ(track->property("truncated").toBool(), c.truncated);
        if (!c.truncated) {
            // As wide as the typed characters, markup and all.
            const QFontMetricsF metrics(track->property("font").value<QFont>());
            EXPECT_NEAR(track->property("contentWidth").toReal(), metrics.horizontalAdvance(c.track), 2.0);
        }
        const auto* artist = view.find<QQuickItem>("artist");
        const QFontMetricsF artistMetrics(artist->property("font").value<QFont>());
        EXPECT_NEAR(artist->property("contentWidth").toReal(), artistMetrics.horizontalAdvance("<u>Artist</u>"), 2.0);
        view.grab().save(artifactsDir() + "/music-text-" + c.size + ".png");
    }
    // A player's own name is outside text as well: typed as it comes, on one line.
    settings().setMusicSize("medium");
    for (const QString& name : QStringList{"<b>mpv</b>", "A media player whose name goes on past the widget"}) {
        play("spotify");
        runner->replies[musicscript::nowPlaying(musicscript::spotify)] = "Song|||Band|||x|||" + name;
        ViewHarness view(kView, 340, 170);
        auto* source = view.find<QQuickItem>("source");
        ASSERT_TRUE(source);
        EXPECT_EQ(source->property("lineCount").toInt(), 1);
        const QFontMetricsF metrics(source->property("font").value<QFont>());
        if (name.startsWith('<'))
            EXPECT_NEAR(source->property("contentWidth").toReal(),
                        metrics.horizontalAdvance(name.toUpper()) / source->property("factor").toReal(), 3.0);
        else
            EXPECT_TRUE(source->property("truncated").toBool());
        view.grab().save(artifactsDir() + "/music-text-source.png");
    }
}

TEST_F(MusicViewTest, BadReadingsAndArtworkFallBackQuietly)
{
    struct Case {
        const char* what;
        std::optional<QString> reply; // to the Spotify script; Music is quiet
        QString expectedCase;
        QString track;
    };
    // Which replies and addresses fail is the monitor's and model's to test; here the view's fallback.
    const QString missing = images.url("/missing.png");
    const Case cases[] = {
        {"too few fields", "Song|||Band", "waiting", ""},
        {"empty fields", "||||||||||spotify", "medium", ""},
        {"no such image", "Song|||Band|||" + missing + "|||spotify", "medium", "Song"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.what);
        play("paused");
        runner->replies[musicscript::nowPlaying(musicscript::spotify)] = c.reply;
        ViewHarness view(kView, 340, 170);
        ASSERT_TRUE(view.root()) << view.errors().toStdString();
        EXPECT_EQ(layoutCase(view), c.expectedCase);
        if (c.expectedCase == "waiting")
            continue;
        if (c.reply->contains("127.0.0.1")) {
            QSignalSpy done(model(view), &MusicWidgetModel::artworkDownloadFinished);
            EXPECT_TRUE(done.wait(10000));
        }
        EXPECT_EQ(view.find<QQuickItem>("track")->property("text").toString(), c.track.isEmpty() ? "" : c.track);
        EXPECT_TRUE(visibleItem(view, "artPlaceholder"));
        EXPECT_EQ(model(view)->glowColor(), kPink);
        EXPECT_TRUE(view.find<QQuickItem>("glass")->property("glowing").toBool());
    }
}

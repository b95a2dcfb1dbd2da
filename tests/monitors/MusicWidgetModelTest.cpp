#include "MusicWidgetModel.h"
#include "ArtworkImage.h"
#include "FakeScriptRunner.h"
#include "ImageServer.h"
#include "MusicMonitor.h"
#include "MusicScripts.h"
#include "MusicVisualizerModel.h"
#include "SettingsManager.h"

#include <QFile>
#include <QPainter>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

namespace {

const QColor pink(255, 55, 95);
const QColor green(29, 185, 84);

QImage filled(int w, int h, QColor c, QImage::Format format = QImage::Format_RGB32)
{
    QImage image(w, h, format);
    image.fill(c);
    return image;
}

// ---- Pure rules ----

TEST(MusicWidgetRules, DisplayTexts)
{
    struct Case {
        std::optional<QString> source;
        QString label;
        QColor color;
    };
    const Case cases[] = {
        {"spotify", "Spotify", green}, {"music", "Apple Music", pink}, {std::nullopt, "Apple Music", pink},
        {"", "Apple Music", pink},     {"Spotify", "Spotify", pink},   {"VLC media player", "VLC media player", pink},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(MusicWidgetModel::sourceLabelFor(c.source), c.label) << c.source.value_or("<absent>").toStdString();
        EXPECT_EQ(MusicWidgetModel::sourceColorFor(c.source), c.color) << c.source.value_or("<absent>").toStdString();
    }
    EXPECT_EQ(MusicWidgetModel::displayText(std::nullopt), "—");
    EXPECT_EQ(MusicWidgetModel::displayText(""), "");
    EXPECT_EQ(MusicWidgetModel::displayText("<b>x</b>"), "<b>x</b>");
}

TEST(MusicWidgetRules, ArtworkAddresses)
{
    QTemporaryDir dir;
    QFile cover(dir.filePath("cover.png")), huge(dir.filePath("huge.png"));
    ASSERT_TRUE(cover.open(QIODevice::WriteOnly) && huge.open(QIODevice::WriteOnly));
    ASSERT_TRUE(huge.resize(MusicWidgetModel::maxLocalArtworkBytes + 1));
    const QString local = QUrl::fromLocalFile(cover.fileName()).toString();
    const std::pair<QString, bool> cases[] = {
        {local, true},
        {QUrl::fromLocalFile(huge.fileName()).toString(), false},
        {QUrl::fromLocalFile(dir.filePath("missing.png")).toString(), false},
        {QUrl::fromLocalFile(dir.path()).toString(), false},
        {"file://otherhost" + cover.fileName(), false},
        {"https://i.scdn.co/image/ab67616d0000b273", true},
        {"http://127.0.0.1:8080/a.png", true},
        {"", false},
        {"not a url", false},
        {"ftp://host/a.png", false},
        {"http://", false},
        {"https://exa mple.com/a.png", false},
    };
    for (const auto& [address, fetched] : cases)
        EXPECT_EQ(!MusicWidgetModel::artworkUrl(address).isEmpty(), fetched) << address.toStdString();
}

struct ColorCase {
    const char* what;
    QImage image;
    QColor expected;
};

QImage columns(const QList<QColor>& colors, int height = 3)
{
    QImage image(int(colors.size()), height, QImage::Format_RGB32);
    for (int x = 0; x < colors.size(); ++x)
        for (int y = 0; y < height; ++y)
            image.setPixelColor(x, y, colors[x]);
    return image;
}

QImage lineWithWhiteAt(int length, int at, bool vertical)
{
    QImage image = vertical ? filled(1, length, Qt::black) : filled(length, 1, Qt::black);
    image.setPixelColor(vertical ? 0 : at, vertical ? at : 0, Qt::white);
    return image;
}

TEST(MusicWidgetRules, AverageColorSamplesATenByTenGrid)
{
    QImage clear = filled(4, 4, QColor(200, 100, 50, 0), QImage::Format_ARGB32);
    const ColorCase cases[] = {
        {"one colour", filled(64, 48, QColor(200, 120, 40)), QColor(200, 120, 40)},
        {"one pixel", filled(1, 1, QColor(7, 250, 131)), QColor(7, 250, 131)},
        // Columns 0,0,1,1,2,2,3,3,4,4: reds 2*(10+20+40+80+160)/10 = 62; blues 2*(0+0+0+0+250)/10 = 50.
        {"five wide",
         columns({QColor(10, 0, 0), QColor(20, 0, 0), QColor(40, 0, 0), QColor(80, 0, 0), QColor(160, 0, 250)}),
         QColor(62, 0, 50)},
        {"grey scale", filled(8, 8, QColor(128, 128, 128), QImage::Format_Grayscale8), QColor(128, 128, 128)},
        {"alpha ignored", clear, QColor(200, 100, 50)},
    };
    for (const auto& c : cases) {
        const auto color = MusicWidgetModel::averageColor(c.image);
        ASSERT_TRUE(color) << c.what;
        EXPECT_EQ(color->rgba(), c.expected.rgba()) << c.what;
    }
    EXPECT_FALSE(MusicWidgetModel::averageColor(QImage()));
}

TEST(MusicWidgetRules, FarEdgeIsNeverSampled)
{
    // Sample 9 of 10 on a 100-pixel side is pixel 90: ten of the hundred samples see it.
    const std::tuple<int, bool, double> cases[] = {
        {90, false, 0.1}, {99, false, 0.0}, {0, false, 0.1}, {90, true, 0.1}, {95, true, 0.0}};
    for (const auto& [at, vertical, red] : cases) {
        const auto color = MusicWidgetModel::averageColor(lineWithWhiteAt(100, at, vertical));
        ASSERT_TRUE(color);
        EXPECT_NEAR(color->redF(), red, 1e-4) << at << (vertical ? " down" : " across");
        EXPECT_EQ(color->alpha(), 255);
    }
}

TEST(ArtworkImageRules, FillCropsEvenly)
{
    const std::tuple<QSizeF, QSizeF, QRectF> cases[] = {
        {{200, 100}, {82, 82}, {50, 0, 100, 100}},
        {{100, 200}, {124, 124}, {0, 50, 100, 100}},
        {{300, 300}, {124, 124}, {0, 0, 300, 300}},
        {{100, 100}, {200, 100}, {0, 25, 100, 50}},
        {{0, 0}, {82, 82}, {}},
    };
    for (const auto& [image, frame, source] : cases)
        EXPECT_EQ(ArtworkImage::fillSource(image, frame), source) << image.width() << "x" << image.height();
}

TEST(ArtworkImageRules, PaintsTheCroppedMiddleInsideRoundedCorners)
{
    // A wide picture, left third red, middle green, right third blue: filling a square shows the
    // middle only, and the corners are cut.
    QImage picture(300, 100, QImage::Format_RGB32);
    picture.fill(Qt::green);
    for (int y = 0; y < 100; ++y)
        for (int x = 0; x < 100; ++x) {
            picture.setPixelColor(x, y, Qt::red);
            picture.setPixelColor(x + 200, y, Qt::blue);
        }
    ArtworkImage item;
    item.setSize({82, 82});
    item.setRadius(14);
    item.setImage(picture);
    QImage canvas(82, 82, QImage::Format_ARGB32);
    canvas.fill(Qt::transparent);
    QPainter painter(&canvas);
    item.paint(&painter);
    painter.end();
    for (const QPoint p : {QPoint(41, 41), QPoint(3, 41), QPoint(78, 41)})
        EXPECT_EQ(canvas.pixelColor(p), QColor(Qt::green)) << p.x();
    EXPECT_EQ(canvas.pixelColor(0, 0).alpha(), 0);
    EXPECT_EQ(canvas.pixelColor(81, 81).alpha(), 0);
}

// ---- Downloads and refreshes, against a loopback server and a canned monitor ----

class MusicWidget : public ::testing::Test {
  protected:
    void SetUp() override
    {
        auto runner = std::make_unique<FakeScriptRunner>();
        m_fake = runner.get();
        m_saved = MusicMonitor::shared().replaceRunner(std::move(runner));
        ASSERT_TRUE(m_server.isListening());
    }
    void TearDown() override { MusicMonitor::shared().replaceRunner(std::move(m_saved)); }

    void spotifyReplies(const std::optional<QString>& reply)
    {
        m_fake->replies.insert(musicscript::nowPlaying("Spotify"), reply);
    }
    void downloadAndWait(const std::optional<QString>& address)
    {
        QSignalSpy finished(&m_model, &MusicWidgetModel::artworkDownloadFinished);
        m_model.extractAverageColor(address);
        ASSERT_TRUE(finished.wait(5000));
    }
    qsizetype nowPlayingAsked() const { return m_fake->asked.count(musicscript::nowPlaying("Spotify")); }

    FakeScriptRunner* m_fake = nullptr;
    std::unique_ptr<ScriptRunner> m_saved;
    ImageServer m_server;
    MusicWidgetModel m_model;
};

TEST_F(MusicWidget, ImageArrivesBeforeColour)
{
    m_server.serve("/a.png", ImageServer::png(filled(30, 20, QColor(12, 34, 56))));
    QStringList order;
    QObject::connect(&m_model, &MusicWidgetModel::imageChanged, [&] { order << "image"; });
    QObject::connect(&m_model, &MusicWidgetModel::glowColorChanged, [&] { order << "colour"; });
    downloadAndWait(m_server.url("/a.png"));
    EXPECT_EQ(order, QStringList({"image", "colour"}));
    EXPECT_EQ(m_model.glowColor().rgba(), QColor(12, 34, 56).rgba());
    EXPECT_EQ(m_model.image().size(), QSize(30, 20));
    EXPECT_TRUE(m_model.hasImage());
}

TEST_F(MusicWidget, FailedDownloadsChangeNothing)
{
    m_server.serve("/good.png", ImageServer::png(filled(10, 10, QColor(90, 80, 70))));
    m_server.serve("/page", "<html>not an image</html>", 200, "text/html");
    m_server.serve("/error-page", "<html>oops</html>", 500, "text/html");
    downloadAndWait(m_server.url("/good.png"));
    const QImage image = m_model.image();
    for (const char* path : {"/missing.png", "/page", "/error-page"}) {
        downloadAndWait(m_server.url(path));
        EXPECT_EQ(m_model.glowColor().rgba(), QColor(90, 80, 70).rgba()) << path;
        EXPECT_EQ(m_model.image(), image) << path;
        EXPECT_EQ(m_server.requestCount(path), 1) << path;
    }
    downloadAndWait(QString("http://127.0.0.1:1/refused.png"));
    EXPECT_EQ(m_model.glowColor().rgba(), QColor(90, 80, 70).rgba());
}

TEST_F(MusicWidget, ImageOnAnErrorStatusIsStillUsed)
{
    m_server.serve("/odd.png", ImageServer::png(filled(5, 5, QColor(1, 2, 3))), 404);
    downloadAndWait(m_server.url("/odd.png"));
    EXPECT_EQ(m_model.glowColor().rgba(), QColor(1, 2, 3).rgba());
}

TEST_F(MusicWidget, NoOrMalformedAddressGivesPinkAtOnce)
{
    m_server.serve("/a.png", ImageServer::png(filled(4, 4, Qt::blue)));
    // Which addresses are malformed is ArtworkAddresses' to test; one of them is enough here.
    for (const std::optional<QString>& address : {std::optional<QString>(), std::optional<QString>("not a url")}) {
        downloadAndWait(m_server.url("/a.png"));
        ASSERT_EQ(m_model.glowColor(), QColor(Qt::blue));
        m_model.extractAverageColor(address);
        EXPECT_EQ(m_model.glowColor(), pink);
        EXPECT_TRUE(m_model.hasImage()); // the picture is not this step's to clear
    }
}

TEST_F(MusicWidget, OverlappingDownloadsLastFinishedWins)
{
    m_server.serve("/slow.png", ImageServer::png(filled(4, 4, Qt::red)), 200, "image/png", 400);
    m_server.serve("/fast.png", ImageServer::png(filled(4, 4, Qt::green)));
    QSignalSpy finished(&m_model, &MusicWidgetModel::artworkDownloadFinished);
    m_model.extractAverageColor(m_server.url("/slow.png"));
    m_model.extractAverageColor(m_server.url("/fast.png"));
    ASSERT_TRUE(QTest::qWaitFor([&] { return finished.size() == 2; }, 5000));
    EXPECT_EQ(m_model.glowColor(), QColor(Qt::red));
}

MusicData readFileMusic()
{
    QFile file(SettingsManager::sharedDataFilePath());
    if (!file.open(QIODevice::ReadOnly))
        return MusicData{QString("<no file>"), {}, {}, {}, false};
    const auto data = SharedWidgetData::decode(file.readAll());
    return data && data->music ? *data->music : MusicData{};
}

TEST_F(MusicWidget, RefreshFetchesOncePerChangeOfArtworkWhilePlaying)
{
    m_server.serve("/a.png", ImageServer::png(filled(8, 8, QColor(0, 0, 200))));
    const QString a = m_server.url("/a.png");

    // Playing without artwork: absent to absent, nothing fetched.
    spotifyReplies("Song|||Band||||||spotify");
    m_model.refreshMusic();
    EXPECT_TRUE(m_model.playing());
    EXPECT_EQ(m_model.glowColor(), pink);
    EXPECT_EQ(m_model.frameGlowColor(), pink);
    EXPECT_EQ(SettingsManager::shared().sharedData().music, m_model.musicData());
    EXPECT_EQ(readFileMusic(), m_model.musicData());

    // New artwork: fetched.
    spotifyReplies("Song|||Band|||" + a + "|||spotify");
    QSignalSpy finished(&m_model, &MusicWidgetModel::artworkDownloadFinished);
    m_model.refreshMusic();
    ASSERT_TRUE(finished.wait(5000));
    EXPECT_EQ(m_model.glowColor(), QColor(0, 0, 200));
    EXPECT_EQ(m_server.requestCount("/a.png"), 1);

    // Same artwork: nothing fetched, picture kept.
    m_model.refreshMusic();
    EXPECT_TRUE(m_model.hasImage());

    // Paused: the frame goes clear, picture and colour stay.
    spotifyReplies("");
    m_model.refreshMusic();
    EXPECT_FALSE(m_model.playing());
    EXPECT_EQ(m_model.frameGlowColor(), QColor(Qt::transparent));
    EXPECT_EQ(m_model.glowColor(), QColor(0, 0, 200));
    EXPECT_TRUE(m_model.hasImage());
    EXPECT_EQ(readFileMusic(), MusicData{});

    // Playing again: the paused reading had no artwork, so this one is a change and is fetched.
    spotifyReplies("Song|||Band|||" + a + "|||spotify");
    m_model.refreshMusic();
    EXPECT_FALSE(m_model.hasImage());
    ASSERT_TRUE(finished.wait(5000));
    EXPECT_TRUE(m_model.hasImage());
    EXPECT_EQ(m_server.requestCount("/a.png"), 2);

    // Artwork to none while playing: picture cleared, glow back to pink at once.
    spotifyReplies("Next|||Band||||||spotify");
    m_model.refreshMusic();
    EXPECT_FALSE(m_model.hasImage());
    EXPECT_EQ(m_model.glowColor(), pink);
    EXPECT_EQ(m_server.requestCount("/a.png"), 2);
}

TEST_F(MusicWidget, ControlRefreshesShortlyAfter)
{
    m_fake->replies.insert(musicscript::isRunning("Spotify"), "true\n");
    spotifyReplies("Song|||Band||||||spotify");
    m_model.control("next");
    EXPECT_TRUE(m_fake->asked.contains(*musicscript::control("next", "Spotify")));
    EXPECT_EQ(nowPlayingAsked(), 0); // not at once
    EXPECT_TRUE(QTest::qWaitFor([&] { return nowPlayingAsked() == 1; }, 2000));
    EXPECT_TRUE(m_model.playing());
}

TEST_F(MusicWidget, PollsOnlyWhileActive)
{
    spotifyReplies("Song|||Band||||||spotify");
    EXPECT_FALSE(m_model.isPolling());
    m_model.setActive(true);
    EXPECT_EQ(nowPlayingAsked(), 1); // on coming on screen
    EXPECT_TRUE(m_model.isPolling());
    EXPECT_TRUE(QTest::qWaitFor([&] { return nowPlayingAsked() == 2; }, 6000)); // a tick
    m_model.setActive(false);
    EXPECT_FALSE(m_model.isPolling());
}

// ---- Visualizer ----

TEST(MusicVisualizer, HeightsStayInTheirRange)
{
    MusicVisualizerModel visualizer;
    EXPECT_EQ(visualizer.heights(), QList<qreal>({4, 4, 4, 4}));
    QSet<qreal> seen;
    for (int i = 0; i < 500; ++i) {
        visualizer.tick();
        ASSERT_EQ(visualizer.targets().size(), 4);
        for (qreal h : visualizer.targets()) {
            ASSERT_GE(h, 4.0);
            ASSERT_LE(h, 20.0);
            seen.insert(h);
        }
    }
    EXPECT_GT(seen.size(), 1000); // the bars draw independently
    QRandomGenerator generator(42);
    qreal low = 20, high = 4;
    for (int i = 0; i < 20000; ++i) {
        const qreal h = MusicVisualizerModel::randomHeight(generator);
        low = std::min(low, h);
        high = std::max(high, h);
    }
    EXPECT_LT(low, 4.1); // spread over the whole range
    EXPECT_GT(high, 19.9);
}

TEST(MusicVisualizer, EasesInAndOut)
{
    const struct {
        qreal progress, height;
    } cases[] = {
        {-1, 4}, {0, 4}, {0.25, 6}, {0.5, 12}, {0.75, 18}, {1, 20}, {2, 20},
    };
    for (const auto& c : cases)
        EXPECT_DOUBLE_EQ(MusicVisualizerModel::eased(4, 20, c.progress), c.height) << c.progress;
}

TEST(MusicVisualizer, TicksOnlyWhileActive)
{
    MusicVisualizerModel visualizer;
    QSignalSpy changed(&visualizer, &MusicVisualizerModel::heightsChanged);
    EXPECT_FALSE(visualizer.isTicking());
    visualizer.setActive(true);
    EXPECT_TRUE(visualizer.isTicking());
    EXPECT_TRUE(changed.wait(2000));
    visualizer.setActive(false);
    EXPECT_FALSE(visualizer.isTicking());
}

} // namespace

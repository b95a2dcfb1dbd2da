#include "MusicWidgetModel.h"
#include "../monitors/FakeSources.h"
#include "MusicMonitor.h"
#include "MusicScripts.h"
#include "ReplayServer.h"
#include "SettingsManager.h"

#include <QFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>
#include <gtest/gtest.h>

const QColor pink(255, 55, 95);

TEST(MusicWidgetRules, TextsColoursAndArtwork)
{
    const std::tuple<std::optional<QString>, QString, QColor> sources[] = {
        {"spotify", "Spotify", QColor(29, 185, 84)},
        {"music", "Musica", pink},
        {std::nullopt, "Musica", pink},
        {"VLC media player", "VLC media player", pink}};
    for (const auto& [source, label, color] : sources) {
        EXPECT_EQ(MusicWidgetModel::sourceLabelFor(source), label);
        EXPECT_EQ(MusicWidgetModel::sourceColorFor(source), color) << label.toStdString();
    }
    EXPECT_EQ(MusicWidgetModel::displayText("<b>x</b>"), "<b>x</b>");

    QTemporaryDir dir;
    QFile cover(dir.filePath("cover.png")), huge(dir.filePath("huge.png"));
    ASSERT_TRUE(cover.open(QIODevice::WriteOnly) && huge.open(QIODevice::WriteOnly));
    ASSERT_TRUE(huge.resize(MusicWidgetModel::maxLocalArtworkBytes + 1));
    const std::pair<QString, bool> addresses[] = {
        {QUrl::fromLocalFile(cover.fileName()).toString(), true},
        {"https://i.scdn.co/image/ab67", true},
        {QUrl::fromLocalFile(huge.fileName()).toString(), false},
        {QUrl::fromLocalFile(dir.path()).toString(), false},
        {"file://otherhost" + cover.fileName(), false},
        {"http://", false},
        {"not a url", false},
    };
    for (const auto& [address, fetched] : addresses)
        EXPECT_EQ(!MusicWidgetModel::artworkUrl(address).isEmpty(), fetched) << address.toStdString();
    // The mean of a 10 by 10 grid of samples: columns 0,0,1,1,...,4,4 of a five-pixel row.
    QImage row(5, 1, QImage::Format_RGB32);
    for (int x = 0; x < 5; ++x)
        row.setPixelColor(x, 0, QColor(10 << x, 0, x == 4 ? 250 : 0));
    EXPECT_EQ(MusicWidgetModel::averageColor(row), QColor(62, 0, 50));
    EXPECT_FALSE(MusicWidgetModel::averageColor(QImage()));
}

TEST(MusicWidgetModel, StatesArtworkAndButtons)
{
    ReplayServer server;
    ASSERT_TRUE(server.listen());
    QImage blue(8, 4, QImage::Format_RGB32);
    blue.fill(QColor(0, 0, 200));
    server.setReply("/a.png", {200, ReplayServer::png(blue), "image/png"});
    server.setReply("/page", {500, "<html>not an image</html>", "text/html"});
    auto* fake = new FakeScriptRunner;
    fake->replies.insert(musicscript::isRunning("Spotify"), "true");
    auto saved = MusicMonitor::shared().replaceRunner(std::unique_ptr<ScriptRunner>(fake));
    MusicWidgetModel model;
    QSignalSpy fetched(&model, &MusicWidgetModel::artworkDownloadFinished);
    const auto play = [&](const QString& reply) {
        fake->replies.insert(musicscript::nowPlaying("Spotify"), reply);
        model.refreshMusic();
    };
    play("Song|||Band||||||spotify"); // playing without artwork: pink, nothing fetched
    EXPECT_EQ(std::tuple(model.playing(), model.track(), model.sourceLabel()), std::tuple(true, "Song", "Spotify"));
    EXPECT_EQ(model.frameGlowColor(), pink);
    EXPECT_EQ(SettingsManager::shared().sharedData().music, model.musicData());

    play("Song|||Band|||" + server.url("/a.png") + "|||spotify"); // new artwork: fetched once
    ASSERT_TRUE(fetched.wait(5000));
    play("Song|||Band|||" + server.url("/a.png") + "|||spotify");
    EXPECT_EQ(std::tuple(model.hasImage(), model.glowColor(), server.requestCount("/a.png")),
              std::tuple(true, QColor(0, 0, 200), 1));

    play(""); // paused: the frame goes clear, picture and colour stay
    EXPECT_EQ(std::tuple(model.playing(), model.track(), model.frameGlowColor(), model.hasImage()),
              std::tuple(false, "—", QColor(Qt::transparent), true));

    play("Next|||Band|||" + server.url("/page") + "|||spotify"); // a body that is no image changes nothing
    ASSERT_TRUE(fetched.wait(5000));
    EXPECT_EQ(model.frameGlowColor(), QColor(0, 0, 200));
    play("Next|||Band||||||spotify"); // no artwork while playing: pink at once
    EXPECT_EQ(std::tuple(model.hasImage(), model.glowColor()), std::tuple(false, pink));

    // A button reaches the player, and the widget reads again shortly after.
    fake->asked.clear();
    model.control("next");
    EXPECT_EQ(fake->asked.value(2), *musicscript::control("next", "Spotify"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return fake->asked.contains(musicscript::nowPlaying("Spotify")); }, 3000));
    // Polls only while on screen.
    model.setActive(true);
    EXPECT_TRUE(model.isPolling());
    model.setActive(false);
    EXPECT_FALSE(model.isPolling());
    MusicMonitor::shared().replaceRunner(std::move(saved));
}

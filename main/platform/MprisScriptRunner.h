#pragma once
// Answers the music monitor's AppleScript texts from MPRIS players on the D-Bus session bus.
// "Spotify" is the org.mpris.MediaPlayer2.spotify player; "Music" is the first other
// org.mpris.MediaPlayer2.* player by name. Any other text is not understood and gives nothing.
#include "ScriptRunner.h"

#include <QDBusConnection>
#include <QHash>
#include <QVariantMap>

class MprisScriptRunner : public ScriptRunner {
public:
    // Every bus call waits this long at most: a hung player costs one refresh half a second
    // instead of freezing the GUI (the widget polls on the main thread).
    static constexpr int defaultTimeoutMs = 500;

    static inline const QString busPrefix = QStringLiteral("org.mpris.MediaPlayer2.");
    static inline const QString spotifyBusName = QStringLiteral("org.mpris.MediaPlayer2.spotify");

    // No connection given: the session bus, reached at the first script.
    explicit MprisScriptRunner(std::optional<QDBusConnection> bus = std::nullopt, int timeoutMs = defaultTimeoutMs);

    std::optional<QString> run(const QString& script) override;

    // Which bus name stands for `app` among the names on the bus: "" for none.
    static QString playerFor(const QString& app, QStringList busNames);
    // The now-playing reply as the script would build it, from the player's properties.
    static QString nowPlayingReply(const QString& app, const QString& playbackStatus, const QVariantMap& metadata);

private:
    enum class Ask { NowPlaying, IsRunning, Call };
    struct Request {
        Ask ask;
        QString app;
        QString method; // for Call
    };

    QDBusConnection& bus();
    std::optional<QDBusMessage> call(const QDBusMessage& message);
    std::optional<QString> findPlayer(const QString& app);
    std::optional<QString> readNowPlaying(const QString& busName, const QString& app);

    QHash<QString, Request> m_requests;
    std::optional<QDBusConnection> m_bus;
    int m_timeoutMs;
};

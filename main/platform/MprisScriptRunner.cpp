#include "MprisScriptRunner.h"

#include "MusicScripts.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusVariant>

namespace {

const QString objectPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString playerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");

// Metadata values arrive as plain values, or still marshalled when nested.
QString metadataText(const QVariant& value)
{
    if (value.canConvert<QDBusArgument>()) {
        const auto arg = value.value<QDBusArgument>();
        if (arg.currentSignature() == QLatin1String("as"))
            return qdbus_cast<QStringList>(arg).join(QStringLiteral(", "));
        return {};
    }
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    if (value.typeId() == QMetaType::QString)
        return value.toString();
    return {};
}

QVariantMap toMap(const QVariant& value)
{
    if (value.canConvert<QDBusArgument>())
        return qdbus_cast<QVariantMap>(value.value<QDBusArgument>());
    return value.toMap();
}

} // namespace

MprisScriptRunner::MprisScriptRunner(std::optional<QDBusConnection> bus, int timeoutMs)
    : m_bus(std::move(bus)), m_timeoutMs(timeoutMs)
{
    const QStringList apps{musicscript::spotify, musicscript::music};
    const QStringList methods{QStringLiteral("PlayPause"), QStringLiteral("Next"), QStringLiteral("Previous")};
    for (const QString& app : apps) {
        m_requests.insert(musicscript::nowPlaying(app), {Ask::NowPlaying, app, {}});
        m_requests.insert(musicscript::isRunning(app), {Ask::IsRunning, app, {}});
        for (qsizetype i = 0; i < musicscript::actions.size(); ++i)
            m_requests.insert(*musicscript::control(musicscript::actions[i], app), {Ask::Call, app, methods[i]});
    }
}

std::optional<QString> MprisScriptRunner::run(const QString& script)
{
    const auto request = m_requests.constFind(script);
    if (request == m_requests.constEnd() || !bus().isConnected())
        return std::nullopt;
    const auto player = findPlayer(request->app);
    if (!player)
        return std::nullopt;
    switch (request->ask) {
    case Ask::IsRunning:
        return player->isEmpty() ? QStringLiteral("false") : QStringLiteral("true");
    case Ask::NowPlaying:
        if (player->isEmpty())
            return QString();
        return readNowPlaying(*player, request->app);
    case Ask::Call:
        // A player that is not there cannot be started from here, so the script fails.
        if (player->isEmpty())
            return std::nullopt;
        if (!call(QDBusMessage::createMethodCall(*player, objectPath, playerInterface, request->method)))
            return std::nullopt;
        return QString();
    }
    return std::nullopt;
}

QString MprisScriptRunner::playerFor(const QString& app, QStringList busNames)
{
    if (app == musicscript::spotify)
        return busNames.contains(spotifyBusName) ? spotifyBusName : QString();
    busNames.sort();
    for (const QString& name : busNames) {
        if (name.startsWith(busPrefix) && name != spotifyBusName)
            return name;
    }
    return {};
}

QString MprisScriptRunner::nowPlayingReply(const QString& app, const QString& playbackStatus, const QVariantMap& metadata)
{
    if (playbackStatus != QLatin1String("Playing"))
        return {};
    const QString sep = QStringLiteral("|||");
    const QString head = metadataText(metadata.value(QStringLiteral("xesam:title"))) + sep
        + metadataText(metadata.value(QStringLiteral("xesam:artist")));
    if (app == musicscript::spotify)
        return head + sep + metadataText(metadata.value(QStringLiteral("mpris:artUrl"))) + sep + QStringLiteral("spotify");
    return head + sep + sep + QStringLiteral("music");
}

QDBusConnection& MprisScriptRunner::bus()
{
    if (!m_bus)
        m_bus = QDBusConnection::sessionBus();
    return *m_bus;
}

std::optional<QDBusMessage> MprisScriptRunner::call(const QDBusMessage& message)
{
    QDBusMessage reply = bus().call(message, QDBus::Block, m_timeoutMs);
    if (reply.type() != QDBusMessage::ReplyMessage)
        return std::nullopt;
    return reply;
}

std::optional<QString> MprisScriptRunner::findPlayer(const QString& app)
{
    const auto reply = call(QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                                           QStringLiteral("/org/freedesktop/DBus"),
                                                           QStringLiteral("org.freedesktop.DBus"),
                                                           QStringLiteral("ListNames")));
    if (!reply || reply->arguments().isEmpty())
        return std::nullopt;
    return playerFor(app, reply->arguments().constFirst().toStringList());
}

std::optional<QString> MprisScriptRunner::readNowPlaying(const QString& busName, const QString& app)
{
    // One GetAll: a player that hangs costs a single timeout.
    QDBusMessage getAll = QDBusMessage::createMethodCall(busName, objectPath,
                                                         QStringLiteral("org.freedesktop.DBus.Properties"),
                                                         QStringLiteral("GetAll"));
    getAll << playerInterface;
    const auto reply = call(getAll);
    if (!reply || reply->arguments().isEmpty())
        return std::nullopt;
    const QVariantMap properties = toMap(reply->arguments().constFirst());
    return nowPlayingReply(app, properties.value(QStringLiteral("PlaybackStatus")).toString(),
                           toMap(properties.value(QStringLiteral("Metadata"))));
}

#include "MprisPlayers.h"

#include "OutsideData.h"

#include <QDBusArgument>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDBusServiceWatcher>
#include <algorithm>

namespace {

const QString objectPath = QStringLiteral("/org/mpris/MediaPlayer2");
const QString rootInterface = QStringLiteral("org.mpris.MediaPlayer2");
const QString playerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");
const QString propertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");
const QString busService = QStringLiteral("org.freedesktop.DBus");
const QString busPath = QStringLiteral("/org/freedesktop/DBus");

bool isPlaying(const QString& status)
{
    return status == QLatin1String("Playing");
}

// Values arrive as plain values, or still marshalled when nested.
QVariantMap toMap(const QVariant& value)
{
    if (value.canConvert<QDBusArgument>())
        return qdbus_cast<QVariantMap>(value.value<QDBusArgument>());
    return value.toMap();
}

std::optional<QString> metadataText(const QVariantMap& metadata, const char* key)
{
    const auto it = metadata.constFind(QLatin1String(key));
    if (it == metadata.constEnd())
        return std::nullopt;
    const QVariant& value = *it;
    if (value.canConvert<QDBusArgument>()) {
        const auto arg = value.value<QDBusArgument>();
        if (arg.currentSignature() == QLatin1String("as"))
            return qdbus_cast<QStringList>(arg).join(QStringLiteral(", "));
        return std::nullopt;
    }
    if (value.typeId() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    if (value.typeId() == QMetaType::QString)
        return value.toString();
    return std::nullopt;
}

} // namespace

MprisPlayers::MprisPlayers(const QDBusConnection& bus, QObject* parent) : QObject(parent), m_bus(bus)
{
    if (!m_bus.isConnected())
        return;
    // A trailing "*" watches every name in the namespace.
    auto* watcher = new QDBusServiceWatcher(QStringLiteral("org.mpris.MediaPlayer2*"), m_bus,
                                            QDBusServiceWatcher::WatchForOwnerChange, this);
    connect(watcher, &QDBusServiceWatcher::serviceOwnerChanged, this,
            [this](const QString& name, const QString&, const QString& owner) {
                vanished(name);
                if (!owner.isEmpty())
                    appeared(name, owner);
            });
    // One match for every player; the sender tells which one spoke.
    m_bus.connect(QString(), objectPath, propertiesInterface, QStringLiteral("PropertiesChanged"), this,
                  SLOT(propertiesChanged(QString, QVariantMap, QStringList, QDBusMessage)));

    // The players already there when watching began.
    auto* list = new QDBusPendingCallWatcher(
        m_bus.asyncCall(QDBusMessage::createMethodCall(busService, busPath, busService, QStringLiteral("ListNames"))),
        this);
    connect(list, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher* call) {
        call->deleteLater();
        const QDBusPendingReply<QStringList> names = *call;
        if (names.isError())
            return;
        for (const QString& name : names.value()) {
            if (!name.startsWith(busPrefix))
                continue;
            QDBusMessage getOwner =
                QDBusMessage::createMethodCall(busService, busPath, busService, QStringLiteral("GetNameOwner"));
            getOwner << name;
            auto* owner = new QDBusPendingCallWatcher(m_bus.asyncCall(getOwner), this);
            connect(owner, &QDBusPendingCallWatcher::finished, this, [this, name](QDBusPendingCallWatcher* ownerCall) {
                ownerCall->deleteLater();
                const QDBusPendingReply<QString> unique = *ownerCall;
                if (!unique.isError() && std::none_of(m_players.begin(), m_players.end(),
                                                      [&](const Player& p) { return p.busName == name; }))
                    appeared(name, unique.value());
            });
        }
    });
}

MusicData MprisPlayers::nowPlaying() const
{
    const qsizetype index = chosen(m_players);
    return index < 0 ? MusicData{} : readingOf(m_players[index]);
}

void MprisPlayers::control(const QString& action)
{
    QString method;
    if (action == QLatin1String("playpause"))
        method = QStringLiteral("PlayPause");
    else if (action == QLatin1String("next"))
        method = QStringLiteral("Next");
    else if (action == QLatin1String("previous"))
        method = QStringLiteral("Previous");
    const qsizetype target = controlTarget(m_players);
    if (method.isEmpty() || target < 0)
        return;
    // Sent, not awaited: the player's answer shows up as its PropertiesChanged.
    m_bus.send(QDBusMessage::createMethodCall(m_players[target].busName, objectPath, playerInterface, method));
}

qsizetype MprisPlayers::chosen(const QList<Player>& players)
{
    qsizetype best = -1;
    for (qsizetype i = 0; i < players.size(); ++i) {
        const Player& p = players[i];
        if (!isPlaying(p.playbackStatus))
            continue;
        if (p.busName == spotifyBusName)
            return i;
        if (best < 0 || p.startedPlaying > players[best].startedPlaying)
            best = i;
    }
    return best;
}

qsizetype MprisPlayers::controlTarget(const QList<Player>& players)
{
    if (const qsizetype shown = chosen(players); shown >= 0)
        return shown;
    qsizetype best = -1;
    for (qsizetype i = 0; i < players.size(); ++i) {
        if (players[i].lastPlayed > 0 && (best < 0 || players[i].lastPlayed > players[best].lastPlayed))
            best = i;
    }
    if (best >= 0)
        return best;
    for (qsizetype i = 0; i < players.size(); ++i) {
        if (players[i].busName == spotifyBusName)
            return i;
    }
    return players.size() - 1;
}

MusicData MprisPlayers::readingOf(const Player& player)
{
    MusicData data;
    const auto cut = [](const std::optional<QString>& text) {
        return text ? std::optional(outside::cutText(*text)) : std::nullopt;
    };
    data.track = cut(metadataText(player.metadata, "xesam:title"));
    data.artist = cut(metadataText(player.metadata, "xesam:artist"));
    data.artwork = metadataText(player.metadata, "mpris:artUrl");
    if (data.artwork && (data.artwork->isEmpty() || data.artwork->size() > outside::maxAddressLength))
        data.artwork.reset();
    if (player.busName == spotifyBusName) {
        data.source = QStringLiteral("spotify");
    } else {
        // A player that gives no name of its own goes by its bus name, less the instance suffix.
        const QString identity = player.identity.trimmed();
        data.source =
            outside::cutText(identity.isEmpty() ? player.busName.mid(busPrefix.size()).section('.', 0, 0) : identity);
    }
    data.playing = true;
    return data;
}

void MprisPlayers::appeared(const QString& busName, const QString& owner)
{
    if (!busName.startsWith(busPrefix))
        return;
    m_players.append(Player{busName, owner, {}, {}, {}, 0, 0, {}});
    askAll(busName, owner, playerInterface);
    askAll(busName, owner, rootInterface);
}

void MprisPlayers::vanished(const QString& busName)
{
    const MusicData before = nowPlaying();
    m_players.removeIf([&](const Player& p) { return p.busName == busName; });
    if (nowPlaying() != before)
        emit changed();
}

void MprisPlayers::askAll(const QString& busName, const QString& owner, const QString& interface)
{
    QDBusMessage getAll =
        QDBusMessage::createMethodCall(busName, objectPath, propertiesInterface, QStringLiteral("GetAll"));
    getAll << interface;
    auto* call = new QDBusPendingCallWatcher(m_bus.asyncCall(getAll), this);
    connect(call, &QDBusPendingCallWatcher::finished, this, [=, this](QDBusPendingCallWatcher* done) {
        done->deleteLater();
        const QDBusPendingReply<QVariantMap> properties = *done;
        if (!properties.isError())
            apply(busName, owner, interface, properties.value(), false);
    });
}

void MprisPlayers::propertiesChanged(const QString& interface, const QVariantMap& changedProperties, const QStringList&,
                                     const QDBusMessage& message)
{
    for (const Player& p : std::as_const(m_players)) {
        if (p.owner == message.service()) {
            apply(p.busName, p.owner, interface, changedProperties, true);
            return;
        }
    }
}

void MprisPlayers::apply(const QString& busName, const QString& owner, const QString& interface, QVariantMap properties,
                         bool fromSignal)
{
    Player* player = find(busName, owner);
    if (!player)
        return;
    // A signal may be delivered before the reply to the GetAll the player answered earlier: what
    // a signal said stands, as it is at least as new.
    for (const QString& name : properties.keys()) {
        if (fromSignal)
            player->signalled.insert(name);
        else if (player->signalled.contains(name))
            properties.remove(name);
    }
    const MusicData before = nowPlaying();
    if (interface == rootInterface) {
        if (properties.contains(QStringLiteral("Identity")))
            player->identity = properties.value(QStringLiteral("Identity")).toString();
    } else if (interface == playerInterface) {
        if (properties.contains(QStringLiteral("Metadata")))
            player->metadata = toMap(properties.value(QStringLiteral("Metadata")));
        if (properties.contains(QStringLiteral("PlaybackStatus"))) {
            const QString status = properties.value(QStringLiteral("PlaybackStatus")).toString();
            if (isPlaying(status) != isPlaying(player->playbackStatus)) {
                player->lastPlayed = ++m_events;
                if (isPlaying(status))
                    player->startedPlaying = player->lastPlayed;
            }
            player->playbackStatus = status;
        }
    }
    if (nowPlaying() != before)
        emit changed();
}

MprisPlayers::Player* MprisPlayers::find(const QString& busName, const QString& owner)
{
    for (Player& p : m_players) {
        if (p.busName == busName && p.owner == owner)
            return &p;
    }
    return nullptr;
}

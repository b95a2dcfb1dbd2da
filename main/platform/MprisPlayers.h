#pragma once
// The MPRIS players on a D-Bus session bus, watched the way desktop media applets do: names
// appearing and vanishing, one GetAll per interface when a player appears, then its
// PropertiesChanged signals. Nothing here waits on the bus: readings come from what the players
// last told, and transport calls are sent without waiting for their reply, so a player that
// never answers costs nothing.
#include "SharedWidgetData.h"

#include <QDBusConnection>
#include <QList>
#include <QObject>
#include <QSet>
#include <QVariantMap>

class MprisPlayers : public QObject {
    Q_OBJECT

  public:
    static inline const QString busPrefix = QStringLiteral("org.mpris.MediaPlayer2.");
    static inline const QString spotifyBusName = QStringLiteral("org.mpris.MediaPlayer2.spotify");

    struct Player {
        QString busName;
        QString owner; // the unique name its signals come from
        QString identity;
        QString playbackStatus;
        QVariantMap metadata;
        quint64 startedPlaying = 0; // when it last started playing, as a count of events; 0: never seen to
        quint64 lastPlayed = 0;     // when it last started or stopped playing
        QSet<QString> signalled;    // properties its signals have given
    };

    explicit MprisPlayers(const QDBusConnection& bus, QObject* parent = nullptr);

    // What the chosen player plays; `playing` false when none plays.
    MusicData nowPlaying() const;
    // "playpause", "next" or "previous" to the player shown, else to the one that played last.
    void control(const QString& action);

    // Spotify while it plays, else the player that started playing most recently; -1 for none.
    static qsizetype chosen(const QList<Player>& players);
    // The chosen one, else the one that last played, else Spotify, else the newest; -1 for none.
    static qsizetype controlTarget(const QList<Player>& players);
    // A playing player's reading: "spotify" as the source of Spotify, the player's own name for the others.
    static MusicData readingOf(const Player& player);

  signals:
    void changed();

  private slots:
    void propertiesChanged(const QString& interface, const QVariantMap& changedProperties,
                           const QStringList& invalidated, const QDBusMessage& message);

  private:
    void appeared(const QString& busName, const QString& owner);
    void vanished(const QString& busName);
    void askAll(const QString& busName, const QString& owner, const QString& interface);
    void apply(const QString& busName, const QString& owner, const QString& interface, QVariantMap properties,
               bool fromSignal);
    Player* find(const QString& busName, const QString& owner);

    QDBusConnection m_bus;
    QList<Player> m_players; // in the order they appeared
    quint64 m_events = 0;
};

// A stand-in media player for tests: owns org.mpris.MediaPlayer2.<name> on the session bus with
// the root and Player interfaces, answers Identity, PlaybackStatus and Metadata as told on the
// command line, and writes every method call to a log file (one name a line) so tests can see
// transport buttons arrive. PlayPause flips Playing and Paused and Play plays, announced by
// PropertiesChanged, as a real player does.
#include <QCommandLineParser>
#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QVariantMap>

class RootAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(QString Identity READ identity)

  public:
    RootAdaptor(QObject* parent, QString identity) : QDBusAbstractAdaptor(parent), m_identity(std::move(identity)) {}
    QString identity() const { return m_identity; }

  private:
    QString m_identity;
};

class PlayerAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus READ playbackStatus)
    Q_PROPERTY(QVariantMap Metadata READ metadata)

  public:
    PlayerAdaptor(QObject* parent, QString status, QVariantMap metadata, QString logPath)
        : QDBusAbstractAdaptor(parent), m_status(std::move(status)), m_metadata(std::move(metadata)),
          m_logPath(std::move(logPath))
    {
    }

    QString playbackStatus() const { return m_status; }
    QVariantMap metadata() const { return m_metadata; }

  public slots:
    void PlayPause()
    {
        log("PlayPause");
        setStatus(m_status == QLatin1String("Playing") ? QStringLiteral("Paused") : QStringLiteral("Playing"));
    }
    void Play()
    {
        log("Play");
        setStatus(QStringLiteral("Playing"));
    }
    void Next() { log("Next"); }
    void Previous() { log("Previous"); }

  private:
    void setStatus(const QString& status)
    {
        m_status = status;
        QDBusMessage changed = QDBusMessage::createSignal("/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties",
                                                          "PropertiesChanged");
        changed << QStringLiteral("org.mpris.MediaPlayer2.Player") << QVariantMap{{"PlaybackStatus", status}}
                << QStringList();
        QDBusConnection::sessionBus().send(changed);
    }

    void log(const char* call)
    {
        if (m_logPath.isEmpty())
            return;
        QFile file(m_logPath);
        if (file.open(QIODevice::Append))
            file.write(QByteArray(call) + '\n');
    }

    QString m_status;
    QVariantMap m_metadata;
    QString m_logPath;
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QCommandLineParser parser;
    const QCommandLineOption name("name", "bus name suffix", "name", "testplayer");
    const QCommandLineOption status("status", "Playing, Paused or Stopped", "status", "Playing");
    const QCommandLineOption title("title", "xesam:title (left out when not given)", "title");
    const QCommandLineOption artist("artist", "one xesam:artist entry; may repeat", "artist");
    const QCommandLineOption artUrl("art-url", "mpris:artUrl (left out when not given)", "url");
    const QCommandLineOption logFile("log", "file that receives one line per method call", "file");
    const QCommandLineOption identity("identity", "Identity of the player", "text", "Test Player");
    parser.addOptions({name, status, title, artist, artUrl, logFile, identity});
    parser.process(app);

    QVariantMap metadata;
    if (parser.isSet(title))
        metadata.insert("xesam:title", parser.value(title));
    if (parser.isSet(artist))
        metadata.insert("xesam:artist", parser.values(artist));
    if (parser.isSet(artUrl))
        metadata.insert("mpris:artUrl", parser.value(artUrl));

    QObject player;
    new RootAdaptor(&player, parser.value(identity));
    new PlayerAdaptor(&player, parser.value(status), metadata, parser.value(logFile));
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject("/org/mpris/MediaPlayer2", &player, QDBusConnection::ExportAdaptors))
        return 1;
    if (!bus.registerService("org.mpris.MediaPlayer2." + parser.value(name)))
        return 1;
    return app.exec();
}

#include "TestMprisPlayer.moc"

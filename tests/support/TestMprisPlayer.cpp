// A stand-in media player for tests: owns org.mpris.MediaPlayer2.<--name> on the session bus with
// the root and Player interfaces, answers Identity, PlaybackStatus and Metadata as told by --identity,
// --status, --title, --artist (may repeat) and --art-url, and writes every method call to the --log
// file (one name a line) so tests see transport buttons arrive. PlayPause flips Playing and Paused
// and Play plays, announced by PropertiesChanged, as a real player does.
#include <QCoreApplication>
#include <QDBusAbstractAdaptor>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QFile>
#include <QMap>
#include <QVariantMap>

class RootAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2")
    Q_PROPERTY(QString Identity MEMBER identity)

  public:
    RootAdaptor(QObject* parent, QString identity) : QDBusAbstractAdaptor(parent), identity(std::move(identity)) {}
    QString identity;
};

class PlayerAdaptor : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.mpris.MediaPlayer2.Player")
    Q_PROPERTY(QString PlaybackStatus MEMBER status)
    Q_PROPERTY(QVariantMap Metadata MEMBER metadata)

  public:
    PlayerAdaptor(QObject* parent, QString status, QVariantMap metadata, QString logPath)
        : QDBusAbstractAdaptor(parent), status(std::move(status)), metadata(std::move(metadata)), m_log(logPath)
    {
    }
    QString status;
    QVariantMap metadata;

  public slots:
    void PlayPause() { log("PlayPause"), setStatus(status == "Playing" ? "Paused" : "Playing"); }
    void Play() { log("Play"), setStatus("Playing"); }
    void Next() { log("Next"); }
    void Previous() { log("Previous"); }

  private:
    void setStatus(const QString& now)
    {
        status = now;
        QDBusMessage changed = QDBusMessage::createSignal("/org/mpris/MediaPlayer2", "org.freedesktop.DBus.Properties",
                                                          "PropertiesChanged");
        changed << QStringLiteral("org.mpris.MediaPlayer2.Player") << QVariantMap{{"PlaybackStatus", now}}
                << QStringList();
        QDBusConnection::sessionBus().send(changed);
    }
    void log(const char* call)
    {
        if (!m_log.fileName().isEmpty() && m_log.open(QIODevice::Append))
            m_log.write(QByteArray(call) + '\n'), m_log.close();
    }

    QFile m_log;
};

int main(int argc, char** argv)
{
    QCoreApplication app(argc, argv);
    QMap<QString, QStringList> options; // --option value pairs
    const QStringList args = app.arguments();
    for (qsizetype i = 1; i + 1 < args.size(); i += 2)
        options[args[i].mid(2)] << args[i + 1];
    const auto option = [&](const QString& name, const QString& otherwise = {}) {
        return options.value(name, {otherwise}).constLast();
    };
    QVariantMap metadata;
    if (options.contains("title"))
        metadata.insert("xesam:title", option("title"));
    if (options.contains("artist"))
        metadata.insert("xesam:artist", options["artist"]);
    if (options.contains("art-url"))
        metadata.insert("mpris:artUrl", option("art-url"));

    QObject player;
    new RootAdaptor(&player, option("identity", "Test Player"));
    new PlayerAdaptor(&player, option("status", "Playing"), metadata, option("log"));
    QDBusConnection bus = QDBusConnection::sessionBus();
    if (!bus.registerObject("/org/mpris/MediaPlayer2", &player, QDBusConnection::ExportAdaptors) ||
        !bus.registerService("org.mpris.MediaPlayer2." + option("name", "testplayer")))
        return 1;
    return app.exec();
}

#include "TestMprisPlayer.moc"

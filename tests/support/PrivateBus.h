#pragma once
// A private session bus (dbus-daemon) for a test, with test MPRIS players on it. Starting it points
// DBUS_SESSION_BUS_ADDRESS at it, so the players and anything else started later use it.
#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <QProcess>
#include <QTest>
#include <memory>
#include <vector>

class PrivateBus {
  public:
    PrivateBus()
    {
        m_daemon.start("dbus-daemon", {"--session", "--print-address", "--nofork"});
        QByteArray line;
        while (m_daemon.waitForStarted(deadlineMs) && !line.contains('\n') && m_daemon.waitForReadyRead(deadlineMs))
            line += m_daemon.readAllStandardOutput();
        m_address = QString::fromUtf8(line).trimmed();
        if (!m_address.isEmpty())
            qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
    }
    ~PrivateBus()
    {
        stopPlayers();
        QDBusConnection::disconnectFromBus(connectionName());
        end(m_daemon);
    }
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    bool isRunning() const { return !m_address.isEmpty(); }
    QString address() const { return m_address; }
    QDBusConnection connection() const { return QDBusConnection::connectToBus(m_address, connectionName()); }

    // Waits (up to a deadline) until `busName` is owned.
    bool waitForName(const QString& busName) const
    {
        const QDBusConnection bus = connection();
        return QTest::qWaitFor([&] { return bus.interface() && bus.interface()->isServiceRegistered(busName).value(); },
                               deadlineMs);
    }
    // Starts mpris_player.py --name `name` `args`; returns once it owns its name, else nullptr.
    QProcess* startPlayer(const QString& name, const QStringList& args = {})
    {
        auto player = std::make_unique<QProcess>();
        player->setProcessChannelMode(QProcess::ForwardedChannels);
        player->start(OMBRIX_MPRIS_PLAYER, QStringList{"--name", name} + args);
        if (!player->waitForStarted(deadlineMs) || !waitForName("org.mpris.MediaPlayer2." + name))
            return nullptr;
        return m_players.emplace_back(std::move(player)).get();
    }
    void stopPlayers()
    {
        for (auto& player : m_players)
            end(*player);
        m_players.clear();
    }

  private:
    static constexpr int deadlineMs = 10000;
    // One per bus: two buses in one test must not share a connection.
    QString connectionName() const { return "ombrix-private-bus " + m_address; }
    static void end(QProcess& process)
    {
        process.terminate();
        if (process.state() != QProcess::NotRunning && !process.waitForFinished(deadlineMs))
            process.kill();
    }

    QProcess m_daemon;
    QString m_address;
    std::vector<std::unique_ptr<QProcess>> m_players;
};

#include "PrivateBus.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QDir>
#include <QFileInfo>
#include <QTest>

namespace {
constexpr int deadlineMs = 10000;
const QString connectionName = QStringLiteral("ombrix-private-bus");
} // namespace

PrivateBus::PrivateBus()
{
    m_daemon.start(QStringLiteral("dbus-daemon"), {"--session", "--print-address", "--nofork"});
    if (!m_daemon.waitForStarted(deadlineMs))
        return;
    QByteArray line;
    while (!line.contains('\n') && m_daemon.waitForReadyRead(deadlineMs))
        line += m_daemon.readAllStandardOutput();
    m_address = QString::fromUtf8(line).trimmed();
    if (!m_address.isEmpty())
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
}

PrivateBus::~PrivateBus()
{
    stopPlayers();
    QDBusConnection::disconnectFromBus(connectionName);
    if (m_daemon.state() != QProcess::NotRunning) {
        m_daemon.terminate();
        if (!m_daemon.waitForFinished(deadlineMs))
            m_daemon.kill();
    }
}

QDBusConnection PrivateBus::connection() const
{
    return QDBusConnection::connectToBus(m_address, connectionName);
}

bool PrivateBus::waitForName(const QString& busName, bool present) const
{
    const QDBusConnection bus = connection();
    return QTest::qWaitFor(
        [&] { return bus.interface() && bus.interface()->isServiceRegistered(busName).value() == present; },
        deadlineMs);
}

QString PrivateBus::playerProgram()
{
    const QString name = QStringLiteral("ombrix-test-mpris-player");
    const QString buildDir = qEnvironmentVariable("OMBRIX_BUILD_DIR");
    if (!buildDir.isEmpty())
        return buildDir + "/tests/support/" + name;
    // Run by hand from the build tree: tests/<area>/<binary>.
    return QDir(QCoreApplication::applicationDirPath()).absoluteFilePath("../support/" + name);
}

QProcess* PrivateBus::startPlayer(const QString& name, const QStringList& args)
{
    auto player = std::make_unique<QProcess>();
    player->setProcessChannelMode(QProcess::ForwardedChannels);
    player->start(playerProgram(), QStringList{"--name", name} + args);
    const QString busName = "org.mpris.MediaPlayer2." + name;
    if (!player->waitForStarted(deadlineMs) || !waitForName(busName, true))
        return nullptr;
    m_players.emplace_back(busName, std::move(player));
    return m_players.back().second.get();
}

bool PrivateBus::stopPlayer(QProcess* player)
{
    for (auto it = m_players.begin(); it != m_players.end(); ++it) {
        if (it->second.get() != player)
            continue;
        player->terminate();
        if (!player->waitForFinished(deadlineMs))
            player->kill();
        const bool gone = waitForName(it->first, false);
        m_players.erase(it);
        return gone;
    }
    return false;
}

bool PrivateBus::stopPlayers()
{
    bool allGone = true;
    while (!m_players.empty())
        allGone = stopPlayer(m_players.back().second.get()) && allGone;
    return allGone;
}

#include "PrivateBus.h"

#include <QCoreApplication>
#include <QDBusConnectionInterface>
#include <QTest>

namespace {
constexpr int deadlineMs = 10000;
const QString connectionName = QStringLiteral("ombrix-private-bus");

void end(QProcess& process)
{
    process.terminate();
    if (!process.waitForFinished(deadlineMs))
        process.kill();
}
} // namespace

PrivateBus::PrivateBus()
{
    m_daemon.start("dbus-daemon", {"--session", "--print-address", "--nofork"});
    QByteArray line;
    while (m_daemon.waitForStarted(deadlineMs) && !line.contains('\n') && m_daemon.waitForReadyRead(deadlineMs))
        line += m_daemon.readAllStandardOutput();
    m_address = QString::fromUtf8(line).trimmed();
    if (!m_address.isEmpty())
        qputenv("DBUS_SESSION_BUS_ADDRESS", m_address.toUtf8());
}

PrivateBus::~PrivateBus()
{
    stopPlayers();
    QDBusConnection::disconnectFromBus(connectionName);
    if (m_daemon.state() != QProcess::NotRunning)
        end(m_daemon);
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

QProcess* PrivateBus::startPlayer(const QString& name, const QStringList& args)
{
    // Beside the test binary in the build tree: tests/<area>/<binary> and tests/support/<player>.
    const QString buildDir =
        qEnvironmentVariable("OMBRIX_BUILD_DIR", QCoreApplication::applicationDirPath() + "/../..");
    auto player = std::make_unique<QProcess>();
    player->setProcessChannelMode(QProcess::ForwardedChannels);
    player->start(buildDir + "/tests/support/ombrix-test-mpris-player", QStringList{"--name", name} + args);
    const QString busName = "org.mpris.MediaPlayer2." + name;
    if (!player->waitForStarted(deadlineMs) || !waitForName(busName, true))
        return nullptr;
    return m_players.emplace_back(busName, std::move(player)).second.get();
}

bool PrivateBus::stopPlayer(QProcess* player)
{
    const auto it = std::find_if(m_players.begin(), m_players.end(), [&](auto& p) { return p.second.get() == player; });
    if (it == m_players.end())
        return false;
    end(*player);
    const bool gone = waitForName(it->first, false);
    m_players.erase(it);
    return gone;
}

bool PrivateBus::stopPlayers()
{
    bool allGone = true;
    while (!m_players.empty())
        allGone = stopPlayer(m_players.back().second.get()) && allGone;
    return allGone;
}

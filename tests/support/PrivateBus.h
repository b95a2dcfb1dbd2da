#pragma once
// A private session bus (dbus-daemon) for a test, with test MPRIS players on it. Starting it points
// DBUS_SESSION_BUS_ADDRESS at it, so the players and anything else started later use it.
#include <QDBusConnection>
#include <QProcess>
#include <memory>
#include <vector>

class PrivateBus {
  public:
    PrivateBus();
    ~PrivateBus();
    PrivateBus(const PrivateBus&) = delete;
    PrivateBus& operator=(const PrivateBus&) = delete;

    bool isRunning() const { return !m_address.isEmpty(); }
    QString address() const { return m_address; }
    QDBusConnection connection() const; // the test's own connection to it

    // Waits (up to a deadline) until `busName` is owned (present) or free (!present).
    bool waitForName(const QString& busName, bool present) const;
    // Starts ombrix-test-mpris-player --name `name` `args`; returns once it owns its name, else nullptr.
    QProcess* startPlayer(const QString& name, const QStringList& args = {});
    // Ends one player (or all) and waits until their names are gone.
    bool stopPlayer(QProcess* player);
    bool stopPlayers();

  private:
    QProcess m_daemon;
    QString m_address;
    std::vector<std::pair<QString, std::unique_ptr<QProcess>>> m_players;
};

#pragma once
// One running copy per user and display. The first copy holds a lock beside a local socket in the
// user's runtime folder; a later start finds the lock taken, hands the running copy a "show"
// request through the socket and exits. Both steps need no QApplication, so a second start costs
// almost nothing. On desktops without a tray host that is the way back to a closed Control Panel.
#include <QLockFile>
#include <QObject>
#include <QString>
#include <memory>

class QLocalServer;

class SingleInstance : public QObject {
    Q_OBJECT

  public:
    // The socket for this user on `display` (the DISPLAY variable when empty).
    explicit SingleInstance(const QString& socketPath = socketPathFor({}), QObject* parent = nullptr);
    ~SingleInstance() override;

    // True when no other copy runs; this copy then holds the lock until it ends. A lock left by a
    // killed copy is taken over.
    bool claim();
    // Asks the running copy to show its panel; waits a little for one that is still starting.
    bool forwardToRunningCopy() const;
    // Starts listening for later starts (needs the application object).
    bool listen();

    // One spelling for one display: ":1", ":1.0" and "unix:1" all give ":1".
    static QString normalisedDisplay(const QString& display);
    // $XDG_RUNTIME_DIR when usable, else a private folder (mode 0700) in the temporary folder.
    static QString runtimeDir();
    static QString socketPathFor(const QString& display);

  signals:
    void showRequested();

  private:
    QString m_socketPath;
    std::unique_ptr<QLockFile> m_lock;
    QLocalServer* m_server = nullptr;
};

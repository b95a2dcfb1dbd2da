#pragma once
// One running copy per user session. A second start hands the running copy a "show" request
// through a local socket and exits; on desktops without a tray host that is the way back to a
// closed Control Panel.
#include <QObject>
#include <QString>

class QLocalServer;

class SingleInstance : public QObject {
    Q_OBJECT

public:
    explicit SingleInstance(const QString& key = defaultKey(), QObject* parent = nullptr);

    // True when another copy is running and took the request; this copy should then exit.
    bool forwardToRunningCopy();
    // Starts listening for later starts.
    bool listen();

    static QString defaultKey();

signals:
    void showRequested();

private:
    QString m_key;
    QLocalServer* m_server = nullptr;
};

#include "SingleInstance.h"

#include <QLocalServer>
#include <QLocalSocket>
#include <unistd.h>

QString SingleInstance::defaultKey()
{
    // Per user and per display, so separate X sessions (and tests) each have their own copy.
    return QString("OmbrixWidget-%1-%2").arg(getuid()).arg(qEnvironmentVariable("DISPLAY").remove(':').remove('.'));
}

SingleInstance::SingleInstance(const QString& key, QObject* parent) : QObject(parent), m_key(key) {}

bool SingleInstance::forwardToRunningCopy()
{
    QLocalSocket socket;
    socket.connectToServer(m_key);
    if (!socket.waitForConnected(1000))
        return false;
    socket.write("show\n");
    socket.waitForBytesWritten(1000);
    socket.disconnectFromServer();
    return true;
}

bool SingleInstance::listen()
{
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    // A copy that crashed leaves its socket file behind: nobody answered it above, so take it over.
    QLocalServer::removeServer(m_key);
    if (!m_server->listen(m_key))
        return false;
    connect(m_server, &QLocalServer::newConnection, this, [this] {
        while (QLocalSocket* s = m_server->nextPendingConnection()) {
            connect(s, &QLocalSocket::readyRead, this, [this, s] {
                if (s->readAll().startsWith("show"))
                    emit showRequested();
                s->deleteLater();
            });
            connect(s, &QLocalSocket::disconnected, s, &QObject::deleteLater);
        }
    });
    return true;
}

#include "SingleInstance.h"

#include <QDir>
#include <QFileInfo>
#include <QLocalServer>
#include <QLocalSocket>
#include <QThread>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

QString SingleInstance::normalisedDisplay(const QString& display)
{
    // [host]:number[.screen]; "unix" and no host are the same local server, the screen is not.
    QString host = display.section(':', 0, 0);
    const QString number = display.section(':', 1).section('.', 0, 0);
    if (host == "unix")
        host.clear();
    return host + ':' + number;
}

QString SingleInstance::runtimeDir()
{
    const QString xdg = qEnvironmentVariable("XDG_RUNTIME_DIR");
    const QFileInfo info(xdg);
    if (!xdg.isEmpty() && info.isDir() && info.ownerId() == getuid())
        return xdg;
    const QString dir = QDir::tempPath() + QString("/OmbrixWidget-%1").arg(getuid());
    mkdir(QFile::encodeName(dir).constData(), 0700);
    // Only a folder that is ours and private is used; anything else gives the plain temp folder,
    // where the lock still keeps copies apart.
    struct stat st {};
    if (lstat(QFile::encodeName(dir).constData(), &st) == 0 && S_ISDIR(st.st_mode) && st.st_uid == getuid()) {
        if ((st.st_mode & 0777) != 0700)
            chmod(QFile::encodeName(dir).constData(), 0700);
        return dir;
    }
    return QDir::tempPath();
}

QString SingleInstance::socketPathFor(const QString& display)
{
    QString name = normalisedDisplay(display.isEmpty() ? qEnvironmentVariable("DISPLAY") : display);
    name.replace('/', '_');
    return runtimeDir() + QString("/OmbrixWidget-%1-%2.socket").arg(getuid()).arg(name);
}

SingleInstance::SingleInstance(const QString& socketPath, QObject* parent) : QObject(parent), m_socketPath(socketPath)
{
}

SingleInstance::~SingleInstance() = default;

bool SingleInstance::claim()
{
    m_lock = std::make_unique<QLockFile>(m_socketPath + ".lock");
    // A running copy holds the lock for its whole life, so age never makes it stale; a dead
    // holder's lock (kill -9) is recognised by its process id and taken over.
    m_lock->setStaleLockTime(0);
    if (m_lock->tryLock(0))
        return true;
    m_lock.reset();
    return false;
}

bool SingleInstance::forwardToRunningCopy() const
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const QByteArray path = QFile::encodeName(m_socketPath);
    if (path.size() >= int(sizeof address.sun_path))
        return false;
    memcpy(address.sun_path, path.constData(), path.size());
    // The running copy may still be starting up: its socket comes a moment after its lock.
    for (int attempt = 0; attempt < 30; ++attempt) {
        const int fd = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
        if (fd < 0)
            return false;
        if (::connect(fd, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0) {
            const bool sent = ::write(fd, "show\n", 5) == 5;
            ::close(fd);
            return sent;
        }
        ::close(fd);
        QThread::msleep(100);
    }
    return false;
}

bool SingleInstance::listen()
{
    m_server = new QLocalServer(this);
    m_server->setSocketOptions(QLocalServer::UserAccessOption);
    // We hold the lock, so a socket file still there was left by a copy that died.
    QLocalServer::removeServer(m_socketPath);
    if (!m_server->listen(m_socketPath))
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

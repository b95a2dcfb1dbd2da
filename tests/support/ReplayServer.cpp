#include "ReplayServer.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QTimer>

namespace {

// The routes of a folder; none where it cannot be read, so that every path answers 404.
QMap<QString, ReplayServer::Reply> readDirectory(const QDir& dir)
{
    QFile manifest(dir.filePath("replies.json"));
    const auto routes = QJsonDocument::fromJson(manifest.open(QIODevice::ReadOnly) ? manifest.readAll() : "").object();
    QMap<QString, ReplayServer::Reply> replies;
    for (auto it = routes.begin(); it != routes.end(); ++it) {
        const auto o = it.value().toObject();
        QFile file(dir.filePath(o.value("file").toString()));
        const QByteArray body = file.open(QIODevice::ReadOnly) ? file.readAll() : o.value("body").toString().toUtf8();
        replies.insert(it.key(), {o.value("status").toInt(200), body,
                                  o.value("contentType").toString(ReplayServer::Reply{}.contentType).toUtf8(),
                                  o.value("hang").toBool(), o.value("delayMs").toInt()});
    }
    return replies;
}

} // namespace

bool ReplayServer::listen(quint16 port)
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
        }
    });
    return m_server.listen(QHostAddress::LocalHost, port);
}

void ReplayServer::answer(QTcpSocket* socket)
{
    // Read only once the whole head is there: closing on unread bytes would reset the connection.
    if (!socket->peek(1 << 20).contains("\r\n\r\n"))
        return;
    socket->disconnect(this);
    const QByteArray line = socket->readAll().split('\r').first();
    m_requestLines.append(line);

    const QString path = QString::fromLatin1(line.split(' ').value(1).split('?').first());
    const auto replies = m_directory.isEmpty() ? m_replies : readDirectory(QDir(m_directory));
    const Reply r = replies.value(path, Reply{404, "not found", "text/plain"});
    if (r.hang)
        return;
    const QByteArray answer = "HTTP/1.1 " + QByteArray::number(r.status) + " Replay\r\nContent-Type: " + r.contentType +
                              "\r\nContent-Length: " + QByteArray::number(r.body.size()) +
                              "\r\nConnection: close\r\n\r\n" + r.body;
    QTimer::singleShot(r.delayMs, socket, [socket, answer] {
        socket->write(answer);
        socket->disconnectFromHost();
    });
}

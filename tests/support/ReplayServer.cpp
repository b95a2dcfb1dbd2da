#include "ReplayServer.h"

#include <QDir>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpSocket>
#include <QTimer>

namespace {

std::optional<QMap<QString, ReplayServer::Reply>> readDirectory(const QDir& dir)
{
    QFile manifest(dir.filePath("replies.json"));
    if (!manifest.open(QIODevice::ReadOnly))
        return std::nullopt;
    const auto routes = QJsonDocument::fromJson(manifest.readAll()).object();
    QMap<QString, ReplayServer::Reply> replies;
    for (auto it = routes.begin(); it != routes.end(); ++it) {
        const auto o = it.value().toObject();
        ReplayServer::Reply r;
        r.status = o.value("status").toInt(r.status);
        r.contentType = o.value("contentType").toString(QString::fromLatin1(r.contentType)).toUtf8();
        r.hang = o.value("hang").toBool();
        r.delayMs = o.value("delayMs").toInt();
        r.body = o.value("body").toString().toUtf8();
        QFile body(dir.filePath(o.value("file").toString()));
        if (o.contains("file") && !body.open(QIODevice::ReadOnly))
            return std::nullopt;
        r.body = body.isOpen() ? body.readAll() : r.body;
        replies.insert(it.key(), r);
    }
    return replies;
}

} // namespace

ReplayServer::ReplayServer(QObject* parent) : QObject(parent)
{
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
        }
    });
}

void ReplayServer::answer(QTcpSocket* socket)
{
    // Read only once the whole head is there: closing on unread bytes would reset the connection.
    if (!socket->peek(1 << 20).contains("\r\n\r\n"))
        return;
    socket->disconnect(this);
    const QByteArray line = socket->readAll().split('\r').first();
    m_requestLines.append(line);
    emit requestReceived(line);

    const QString path = QString::fromLatin1(line.split(' ').value(1).split('?').first());
    const auto replies = m_directory.isEmpty() ? std::optional(m_replies) : readDirectory(QDir(m_directory));
    const Reply r = replies && replies->contains(path) ? replies->value(path) : Reply{404, "not found", "text/plain"};
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

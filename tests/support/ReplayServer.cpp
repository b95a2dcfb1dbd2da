#include "ReplayServer.h"

#include <QDir>
#include <QFile>
#include <QHostAddress>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

namespace {

QByteArray reasonPhrase(int status)
{
    switch (status) {
    case 200:
        return "OK";
    case 400:
        return "Bad Request";
    case 404:
        return "Not Found";
    case 429:
        return "Too Many Requests";
    case 500:
        return "Internal Server Error";
    case 503:
        return "Service Unavailable";
    default:
        return "Status";
    }
}

QByteArray response(const ReplayServer::Reply& r)
{
    const QByteArray length =
        r.announceLength ? "\r\nContent-Length: " + QByteArray::number(r.body.size()) : QByteArray();
    return "HTTP/1.1 " + QByteArray::number(r.status) + ' ' + reasonPhrase(r.status) +
           "\r\nContent-Type: " + r.contentType + length + "\r\nConnection: close\r\n\r\n" + r.body;
}

// The path of a request target, without its query.
QString targetPath(const QByteArray& requestLine)
{
    const auto parts = requestLine.split(' ');
    if (parts.size() < 2)
        return {};
    const QByteArray target = parts[1];
    const auto q = target.indexOf('?');
    return QString::fromLatin1(q < 0 ? target : target.left(q));
}

} // namespace

ReplayServer::ReplayServer(QObject* parent) : QObject(parent), m_server(new QTcpServer(this))
{
    connect(m_server, &QTcpServer::newConnection, this, &ReplayServer::onNewConnection);
}

bool ReplayServer::listen(quint16 port)
{
    return m_server->listen(QHostAddress::LocalHost, port);
}

quint16 ReplayServer::port() const
{
    return m_server->serverPort();
}

QString ReplayServer::baseUrl() const
{
    return QString("http://127.0.0.1:%1").arg(port());
}

void ReplayServer::setReply(const QString& path, const Reply& reply)
{
    m_replies.insert(path, reply);
}

void ReplayServer::clearReplies()
{
    m_replies.clear();
}

void ReplayServer::serveDirectory(const QString& directory)
{
    m_directory = directory;
}

std::optional<QMap<QString, ReplayServer::Reply>> ReplayServer::readDirectory(const QString& directory)
{
    QFile manifest(QDir(directory).filePath("replies.json"));
    if (!manifest.open(QIODevice::ReadOnly))
        return std::nullopt;
    const auto doc = QJsonDocument::fromJson(manifest.readAll());
    if (!doc.isObject())
        return std::nullopt;
    QMap<QString, Reply> replies;
    const auto routes = doc.object();
    for (auto it = routes.begin(); it != routes.end(); ++it) {
        const auto o = it.value().toObject();
        Reply r;
        r.status = o.value("status").toInt(r.status);
        r.contentType = o.value("contentType").toString(QString::fromLatin1(r.contentType)).toUtf8();
        r.hang = o.value("hang").toBool(false);
        r.delayMs = o.value("delayMs").toInt(0);
        r.announceLength = o.value("announceLength").toBool(true);
        if (o.contains("file")) {
            QFile body(QDir(directory).filePath(o.value("file").toString()));
            if (!body.open(QIODevice::ReadOnly))
                return std::nullopt;
            r.body = body.readAll();
        } else {
            r.body = o.value("body").toString().toUtf8();
        }
        replies.insert(it.key(), r);
    }
    return replies;
}

std::optional<ReplayServer::Reply> ReplayServer::replyFor(const QString& path) const
{
    if (m_directory.isEmpty())
        return m_replies.contains(path) ? std::optional(m_replies.value(path)) : std::nullopt;
    const auto replies = readDirectory(m_directory);
    if (!replies || !replies->contains(path))
        return std::nullopt;
    return replies->value(path);
}

void ReplayServer::onNewConnection()
{
    while (QTcpSocket* socket = m_server->nextPendingConnection()) {
        socket->setParent(this);
        m_pending.insert(socket, {});
        connect(socket, &QTcpSocket::readyRead, this, [this, socket] { onReadyRead(socket); });
        connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
            m_pending.remove(socket);
            socket->deleteLater();
        });
    }
}

void ReplayServer::onReadyRead(QTcpSocket* socket)
{
    if (!m_pending.contains(socket)) {
        socket->readAll(); // already answered (or hanging): anything more is ignored
        return;
    }
    QByteArray& buffer = m_pending[socket];
    buffer += socket->readAll();
    if (!buffer.contains("\r\n\r\n"))
        return;
    const QByteArray line = buffer.left(buffer.indexOf("\r\n"));
    m_pending.remove(socket);
    m_requestLines.append(line);
    emit requestReceived(line);

    const auto reply = replyFor(targetPath(line));
    if (reply && reply->hang)
        return;
    const QByteArray answer = response(reply.value_or(Reply{404, "not found", "text/plain"}));
    QTimer::singleShot(reply ? reply->delayMs : 0, socket, [socket, answer] {
        socket->write(answer);
        socket->disconnectFromHost();
    });
}

#pragma once
// A loopback HTTP server for tests: a request gets the canned reply of its path (query ignored) or
// 404, and every request line is kept byte for byte. One request per connection.
#include <QBuffer>
#include <QImage>
#include <QMap>
#include <QTcpServer>
#include <QTcpSocket>

class ReplayServer : public QObject {
  public:
    struct Reply {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "application/json; charset=utf-8";
        bool hang = false;
        bool unsized = false; // no Content-Length: the closed connection ends the body
    };

    bool listen(quint16 port = 0) // on 127.0.0.1
    {
        connect(&m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* socket = m_server.nextPendingConnection()) {
                connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
                connect(socket, &QTcpSocket::readyRead, this, [this, socket] { answer(socket); });
            }
        });
        return m_server.listen(QHostAddress::LocalHost, port);
    }
    QString baseUrl() const { return QString("http://127.0.0.1:%1").arg(m_server.serverPort()); }
    QString url(const QString& path) const { return baseUrl() + path; }

    void setReply(const QString& path, const Reply& reply) { m_replies.insert(path, reply); }
    void setJson(const QString& path, const QByteArray& body, int status = 200) { setReply(path, {status, body}); }
    void setHang(const QString& path) { setReply(path, {200, {}, {}, true}); }

    QList<QByteArray> requestLines() const { return m_requestLines; }
    void clearRequests() { m_requestLines.clear(); }
    int requestCount(const QString& path) const
    {
        return int(m_requestLines.count("GET " + path.toUtf8() + " HTTP/1.1"));
    }

    static QByteArray png(const QImage& image)
    {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        image.save(&buffer, "PNG");
        return bytes;
    }

  private:
    void answer(QTcpSocket* socket)
    {
        // Read only once the whole head is there: closing on unread bytes would reset the connection.
        if (!socket->peek(1 << 20).contains("\r\n\r\n"))
            return;
        socket->disconnect(this);
        const QByteArray line = socket->readAll().split('\r').first();
        m_requestLines.append(line);
        const QString path = QString::fromLatin1(line.split(' ').value(1).split('?').first());
        const Reply r = m_replies.value(path, {404, "not found", "text/plain"});
        if (r.hang)
            return;
        const QByteArray answer =
            "HTTP/1.1 " + QByteArray::number(r.status) + " Replay\r\nContent-Type: " + r.contentType +
            (r.unsized ? QByteArray() : "\r\nContent-Length: " + QByteArray::number(r.body.size())) +
            "\r\nConnection: close\r\n\r\n" + r.body;
        socket->write(answer);
        socket->disconnectFromHost();
    }

    QTcpServer m_server;
    QMap<QString, Reply> m_replies;
    QList<QByteArray> m_requestLines;
};

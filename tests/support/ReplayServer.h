#pragma once
// A loopback HTTP/1.1 server for tests: each request gets the canned reply of its path (query
// ignored) or 404, and every request line is kept byte for byte. A reply may hang (accepted, never
// answered) or come late. One request per connection.
#include <QMap>
#include <QTcpServer>

class ReplayServer : public QObject {
    Q_OBJECT
  public:
    struct Reply {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "application/json; charset=utf-8";
        bool hang = false;
        int delayMs = 0;
    };

    explicit ReplayServer(QObject* parent = nullptr);
    bool listen(quint16 port = 0) { return m_server.listen(QHostAddress::LocalHost, port); }
    quint16 port() const { return m_server.serverPort(); }
    QString baseUrl() const { return QString("http://127.0.0.1:%1").arg(port()); }

    void setReply(const QString& path, const Reply& reply) { m_replies.insert(path, reply); }
    void setJson(const QString& path, const QByteArray& body, int status = 200) { setReply(path, {status, body}); }
    void setHang(const QString& path) { setReply(path, {200, {}, {}, true}); }
    // Replies from a folder's "replies.json" instead, read again at every request: a path maps to
    // {"status", "contentType", "hang", "delayMs", and "file" (beside it) or "body"}.
    void serveDirectory(const QString& directory) { m_directory = directory; }

    QList<QByteArray> requestLines() const { return m_requestLines; }
    void clearRequests() { m_requestLines.clear(); }

  signals:
    void requestReceived(const QByteArray& requestLine);

  private:
    void answer(QTcpSocket* socket);

    QTcpServer m_server;
    QMap<QString, Reply> m_replies;
    QString m_directory;
    QList<QByteArray> m_requestLines;
};

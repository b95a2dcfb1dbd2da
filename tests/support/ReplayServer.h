#pragma once
// A loopback HTTP server for tests: a request gets the canned reply of its path (query ignored) or
// 404, and every request line is kept byte for byte. One request per connection.
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

    bool listen(quint16 port = 0); // on 127.0.0.1
    QString baseUrl() const { return QString("http://127.0.0.1:%1").arg(m_server.serverPort()); }

    void setReply(const QString& path, const Reply& reply) { m_replies.insert(path, reply); }
    void setJson(const QString& path, const QByteArray& body, int status = 200) { setReply(path, {status, body}); }
    void setHang(const QString& path) { setReply(path, {200, {}, {}, true}); }
    // Replies from a folder's "replies.json" instead, read again at every request: a path maps to
    // {"status", "contentType", "hang", "delayMs", and "file" (beside it) or "body"}.
    void serveDirectory(const QString& directory) { m_directory = directory; }

    QList<QByteArray> requestLines() const { return m_requestLines; }
    void clearRequests() { m_requestLines.clear(); }

  private:
    void answer(QTcpSocket* socket);

    QTcpServer m_server;
    QMap<QString, Reply> m_replies;
    QString m_directory;
    QList<QByteArray> m_requestLines;
};

#pragma once
// A small HTTP/1.1 server on 127.0.0.1 for tests: it answers each request with the canned reply of
// its path (query ignored), or 404, and keeps every request line exactly as it came, so a test can
// check each byte of a query. A reply may also hang (the connection is accepted and never answered)
// or come late, whole, after a delay.
// One request per connection; every answer closes it.
#include <QByteArray>
#include <QHash>
#include <QList>
#include <QMap>
#include <QObject>
#include <QString>
#include <optional>

class QTcpServer;
class QTcpSocket;

class ReplayServer : public QObject {
    Q_OBJECT
  public:
    struct Reply {
        int status = 200;
        QByteArray body;
        QByteArray contentType = "application/json; charset=utf-8";
        bool hang = false;
        int delayMs = 0;
        bool announceLength = true; // false: no Content-Length, the body ends with the connection
    };

    explicit ReplayServer(QObject* parent = nullptr);

    // Listens on a free port (or `port`) of 127.0.0.1.
    bool listen(quint16 port = 0);
    quint16 port() const;
    QString baseUrl() const; // "http://127.0.0.1:<port>"

    void setReply(const QString& path, const Reply& reply);
    void setJson(const QString& path, const QByteArray& body, int status = 200) { setReply(path, {status, body}); }
    void setHang(const QString& path) { setReply(path, {200, {}, {}, true}); }
    void clearReplies();

    // Answers from a folder instead, read again at every request so a run can change its replies.
    // Its "replies.json" maps a path to {"status", "contentType", "hang", "delayMs", and "file" (beside
    // it) or "body" (text), "announceLength"}; a missing field takes the default of Reply.
    void serveDirectory(const QString& directory);
    static std::optional<QMap<QString, Reply>> readDirectory(const QString& directory);

    QList<QByteArray> requestLines() const { return m_requestLines; }
    void clearRequests() { m_requestLines.clear(); }

  signals:
    void requestReceived(const QByteArray& requestLine);

  private:
    void onNewConnection();
    void onReadyRead(QTcpSocket* socket);
    std::optional<Reply> replyFor(const QString& path) const;

    QTcpServer* m_server;
    QMap<QString, Reply> m_replies;
    QString m_directory;
    QHash<QTcpSocket*, QByteArray> m_pending;
    QList<QByteArray> m_requestLines;
};

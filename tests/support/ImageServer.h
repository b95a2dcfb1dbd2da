#pragma once
// A tiny HTTP/1.1 server on 127.0.0.1 serving fixed bodies by path (images, or anything else),
// each with its status and an optional delay; unknown paths get 404. Counts requests per path.
#include <QByteArray>
#include <QHash>
#include <QImage>
#include <QTcpServer>

class ImageServer : public QObject {
  public:
    explicit ImageServer(QObject* parent = nullptr);

    bool isListening() const { return m_server.isListening(); }
    QString url(const QString& path) const;

    void serve(const QString& path, const QByteArray& body, int status = 200,
               const QByteArray& contentType = "image/png", int delayMs = 0);
    int requestCount(const QString& path) const { return m_requests.value(path); }

    // The image as PNG bytes.
    static QByteArray png(const QImage& image);

  private:
    struct Route {
        QByteArray body;
        int status = 200;
        QByteArray contentType;
        int delayMs = 0;
    };
    void answer(QTcpSocket* socket, const QByteArray& request);

    QTcpServer m_server;
    QHash<QString, Route> m_routes;
    QHash<QString, int> m_requests;
};

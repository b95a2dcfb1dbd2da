#pragma once
// Fixed bodies (images, or anything else) by path on a loopback ReplayServer, with the number of
// requests per path; unknown paths get 404.
#include "ReplayServer.h"

#include <QBuffer>
#include <QImage>

class ImageServer : public ReplayServer {
  public:
    ImageServer() { m_listening = listen(); }

    bool isListening() const { return m_listening; }
    QString url(const QString& path) const { return baseUrl() + path; }
    void serve(const QString& path, const QByteArray& body, int status = 200,
               const QByteArray& contentType = "image/png", int delayMs = 0)
    {
        setReply(path, {status, body, contentType, false, delayMs});
    }
    int requestCount(const QString& path) const
    {
        return int(requestLines().count("GET " + path.toUtf8() + " HTTP/1.1"));
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
    bool m_listening = false;
};

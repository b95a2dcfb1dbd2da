#pragma once
// Fixed bodies (images, or anything else) by path on a loopback ReplayServer, with the number of
// requests per path; unknown paths get 404.
#include "ReplayServer.h"

#include <QBuffer>
#include <QImage>

class ImageServer : public ReplayServer {
  public:
    ImageServer() { listen(); }

    QString url(const QString& path) const { return baseUrl() + path; }
    void serve(const QString& path, const QByteArray& body, int status = 200, const QByteArray& type = "image/png")
    {
        setReply(path, {status, body, type});
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
};

#include "ImageServer.h"

#include <QBuffer>
#include <QTcpSocket>
#include <QTimer>

ImageServer::ImageServer(QObject* parent) : QObject(parent)
{
    m_server.listen(QHostAddress::LocalHost);
    connect(&m_server, &QTcpServer::newConnection, this, [this] {
        while (QTcpSocket* socket = m_server.nextPendingConnection()) {
            connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
            // The request is read until its blank line; bodies of requests are not expected.
            auto* received = new QByteArray;
            connect(socket, &QObject::destroyed, this, [received] { delete received; });
            connect(socket, &QTcpSocket::readyRead, this, [this, socket, received] {
                const bool started = received->contains("\r\n\r\n");
                *received += socket->readAll();
                if (!started && received->contains("\r\n\r\n"))
                    answer(socket, *received);
            });
        }
    });
}

QString ImageServer::url(const QString& path) const
{
    return QStringLiteral("http://127.0.0.1:%1%2").arg(m_server.serverPort()).arg(path);
}

void ImageServer::serve(const QString& path, const QByteArray& body, int status, const QByteArray& contentType,
                        int delayMs)
{
    m_routes.insert(path, Route{body, status, contentType, delayMs});
}

QByteArray ImageServer::png(const QImage& image)
{
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes;
}

void ImageServer::answer(QTcpSocket* socket, const QByteArray& request)
{
    const QList<QByteArray> requestLine = request.left(request.indexOf("\r\n")).split(' ');
    const QString path = requestLine.size() >= 2 ? QString::fromUtf8(requestLine[1]) : QString();
    m_requests[path] += 1;
    const Route route = m_routes.value(path, Route{"not found", 404, "text/plain", 0});
    QTimer::singleShot(route.delayMs, socket, [socket, route] {
        socket->write("HTTP/1.1 " + QByteArray::number(route.status) + " X\r\nContent-Type: " + route.contentType +
                      "\r\nContent-Length: " + QByteArray::number(route.body.size()) + "\r\nConnection: close\r\n\r\n" +
                      route.body);
        socket->disconnectFromHost();
    });
}

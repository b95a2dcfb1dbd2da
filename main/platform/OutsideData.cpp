#include "OutsideData.h"

#include <QNetworkReply>

namespace outside {

QString cutText(const QString& text)
{
    if (text.size() <= maxTextLength)
        return text;
    qsizetype end = maxTextLength;
    if (text.at(end - 1).isHighSurrogate())
        --end;
    return text.left(end);
}

void limitBody(QNetworkReply* reply, qint64 maxBytes)
{
    // Both checks act while reading: the body is never buffered past the limit.
    QObject::connect(reply, &QNetworkReply::metaDataChanged, reply, [reply, maxBytes] {
        const QVariant length = reply->header(QNetworkRequest::ContentLengthHeader);
        if (length.isValid() && length.toLongLong() > maxBytes)
            reply->abort();
    });
    QObject::connect(reply, &QNetworkReply::downloadProgress, reply, [reply, maxBytes](qint64 received, qint64) {
        if (received > maxBytes)
            reply->abort();
    });
    QObject::connect(reply, &QIODevice::readyRead, reply, [reply, maxBytes] {
        if (reply->bytesAvailable() > maxBytes)
            reply->abort();
    });
}

std::optional<QByteArray> readBody(QNetworkReply* reply, qint64 maxBytes)
{
    if (!reply->isOpen())
        return std::nullopt;
    QByteArray body = reply->read(maxBytes + 1);
    if (body.size() > maxBytes)
        return std::nullopt;
    return body;
}

} // namespace outside

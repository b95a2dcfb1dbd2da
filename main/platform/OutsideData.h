#pragma once
// Limits on data from outside the program (replies of web services, players, tools), so a broken or
// hostile peer costs at most a refused reply or a shortened text, never memory, time or settings.
#include <QByteArray>
#include <QString>
#include <optional>

class QNetworkReply;

namespace outside {

// A weather reply is a few kilobytes (five days of forecast about 1 kB); a megabyte is none.
inline constexpr qint64 maxReplyBytes = 1 << 20;
// A 3000x3000 cover, the largest stores serve, is about 4 MB as JPEG.
inline constexpr qint64 maxArtworkBytes = 16 << 20;
// One line of a 340-pt-wide widget holds well under a hundred characters; more is never seen.
inline constexpr qsizetype maxTextLength = 256;
// Longer addresses are refused by common servers and browsers alike.
inline constexpr qsizetype maxAddressLength = 2048;

// `text` cut to maxTextLength, never inside a surrogate pair.
QString cutText(const QString& text);

// Aborts `reply` as soon as its announced length or the bytes received pass `maxBytes`; an aborted
// reply ends as OperationCanceledError with nothing to read.
void limitBody(QNetworkReply* reply, qint64 maxBytes);
// The body of a finished reply, or nothing when it holds more than `maxBytes`: a body sent without
// a length can arrive whole before any progress is told, so what was read is counted again here.
std::optional<QByteArray> readBody(QNetworkReply* reply, qint64 maxBytes);

} // namespace outside

#pragma once
// Replacing a whole file so that a reader sees either the old bytes or the new ones, never a mix.
#include <QByteArray>
#include <QString>

namespace atomicfile {

// Writes `bytes` to a temporary file beside `path` and moves it over `path` only once every byte
// is on disk; false, with the old file untouched, when any step fails (a full disk, a quota, a
// file size limit).
bool replace(const QString& path, const QByteArray& bytes);

} // namespace atomicfile

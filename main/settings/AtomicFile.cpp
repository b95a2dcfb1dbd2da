#include "AtomicFile.h"

#include <QSaveFile>

namespace atomicfile {

bool replace(const QString& path, const QByteArray& bytes)
{
    QSaveFile f(path);
    // Unbuffered: Qt 6.4's commit() does not look at a failed flush of its own buffer, and would
    // move an empty temporary file over the old one when the disk is full.
    if (!f.open(QIODevice::WriteOnly | QIODevice::Unbuffered))
        return false;
    if (f.write(bytes) != bytes.size() || !f.flush() || f.error() != QFileDevice::NoError) {
        f.cancelWriting();
        return false;
    }
    return f.commit();
}

} // namespace atomicfile

// Any bytes in the suite's file, then a save and a second read: what was read must round-trip.
#include "DefaultsSuite.h"

#include <QFile>
#include <QTemporaryDir>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static QTemporaryDir dir;
    QFile f(dir.filePath("fuzz.json"));
    if (!f.open(QIODevice::WriteOnly))
        return 0;
    f.write(reinterpret_cast<const char*>(data), qint64(size));
    f.close();
    auto suite = DefaultsSuite::open("fuzz", dir.path());
    if (!suite)
        return 0;
    // The keys of this input, as the first read saw them, must read back alike after a save.
    const auto first = suite->stringForKey("k");
    if (!suite->synchronize())
        return 0;
    if (DefaultsSuite::open("fuzz", dir.path())->stringForKey("k") != first)
        __builtin_trap();
    return 0;
}

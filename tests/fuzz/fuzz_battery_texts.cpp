// The two tool texts, split at the first NUL byte of the input: pmset before it, ioreg after.
#include "BatteryMonitor.h"
#include "OutsideData.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray input(reinterpret_cast<const char*>(data), qsizetype(size));
    const qsizetype split = input.indexOf('\0');
    const QString pmset = QString::fromUtf8(split < 0 ? input : input.left(split));
    const QString ioreg = split < 0 ? QString() : QString::fromUtf8(input.mid(split + 1));
    for (const BatteryDevice& d : BatteryMonitor::parseBatteryDevices(pmset, ioreg))
        if (d.name.size() > outside::maxTextLength)
            __builtin_trap();
    return 0;
}

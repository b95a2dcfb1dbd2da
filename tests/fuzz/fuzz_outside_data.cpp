// Any bytes, given to every parser of outside data: the battery tools' texts (pmset before the first
// NUL byte, ioreg after), a player's reply, the three weather services' bodies and the suite's file.
#include "../monitors/FakeSources.h"
#include "BatteryMonitor.h"
#include "DefaultsSuite.h"
#include "MusicMonitor.h"
#include "MusicScripts.h"
#include "OutsideData.h"
#include "WeatherReplies.h"

#include <QFile>
#include <QTemporaryDir>
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

    static auto* runner = new FakeScriptRunner;
    static auto* monitor = new MusicMonitor(std::unique_ptr<ScriptRunner>(runner));
    runner->replies.insert(musicscript::nowPlaying("Spotify"), QString::fromUtf8(input));
    runner->asked.clear();
    const MusicData m = monitor->getNowPlaying();
    if (m.track && m.track->size() > outside::maxTextLength)
        __builtin_trap();

    IPLocation::decode(input);
    GeocodingResponse::decode(input);
    WeatherResponse::decode(input);

    // What the first read of the suite's file saw must read back alike after a save.
    static QTemporaryDir dir;
    QFile f(dir.filePath("fuzz.json"));
    if (!f.open(QIODevice::WriteOnly))
        return 0;
    f.write(input);
    f.close();
    auto suite = DefaultsSuite::open("fuzz", dir.path());
    const auto first = suite ? suite->stringForKey("k") : std::nullopt;
    if (suite && suite->synchronize() && DefaultsSuite::open("fuzz", dir.path())->stringForKey("k") != first)
        __builtin_trap();
    return 0;
}

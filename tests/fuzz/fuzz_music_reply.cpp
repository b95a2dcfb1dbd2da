// A player's reply to the now-playing script, whatever it holds.
#include "MusicMonitor.h"
#include "MusicScripts.h"
#include "OutsideData.h"

#include <cstdint>

namespace {

class OneReply : public ScriptRunner {
  public:
    std::optional<QString> run(const QString& script) override
    {
        if (script == musicscript::nowPlaying("Spotify"))
            return reply;
        return std::nullopt;
    }
    QString reply;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static auto* runner = new OneReply;
    static auto* monitor = new MusicMonitor(std::unique_ptr<ScriptRunner>(runner));
    runner->reply = QString::fromUtf8(reinterpret_cast<const char*>(data), qsizetype(size));
    const MusicData m = monitor->getNowPlaying();
    if (m.track && m.track->size() > outside::maxTextLength)
        __builtin_trap();
    return 0;
}

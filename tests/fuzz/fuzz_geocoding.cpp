// Any body the service might send.
#include "WeatherReplies.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    GeocodingResponse::decode(QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size)));
    return 0;
}

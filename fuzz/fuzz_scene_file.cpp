// Any bytes as a classic scene file (plain or gzip): never a crash, a leak or a hang, and what
// was read writes out as VRML.
#include "fuzz/LoadAndWrite.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Orvane::Fuzz::loadAndWrite(std::string(reinterpret_cast<const char*>(data), size), "fuzz.wrl");
    return 0;
}

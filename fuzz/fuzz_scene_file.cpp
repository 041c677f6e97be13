// Any bytes as a classic scene file (plain or gzip): never a crash, a leak or a hang, and what
// was read writes out as VRML.
#include "base/Log.h"
#include "base/VRMLWriteAction.h"
#include "modules/loader/SceneLoader.h"

#include <cstdint>
#include <sstream>
#include <string>

using namespace Orvane;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const bool quiet = [] {
        Log::the().setDefaultSinkEnabled(false);
        Log::the().setLevel(LOG_FATAL);
        return true;
    }();
    (void)quiet;
    LoadedScene scene = SceneLoader::loadData(std::string(reinterpret_cast<const char*>(data), size), "fuzz.wrl");
    if (scene.root) {
        VRMLWriteAction    writer;
        std::ostringstream out;
        SceneLoader::write(*scene.root, writer, out);
    }
    return 0;
}

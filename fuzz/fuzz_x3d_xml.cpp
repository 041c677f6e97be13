// Any bytes as an X3D XML document (the reader is chosen by content, so inputs that do not look
// like XML are made to): never a crash, a leak or a hang, and what was read writes out as VRML.
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
    std::string text(reinterpret_cast<const char*>(data), size);
    if (!SceneLoader::isXml(text))
        text.insert(0, "<X3D version='4.0'>");
    LoadedScene scene = SceneLoader::loadData(std::move(text), "fuzz.x3d");
    if (scene.root) {
        VRMLWriteAction    writer;
        std::ostringstream out;
        SceneLoader::write(*scene.root, writer, out);
    }
    return 0;
}

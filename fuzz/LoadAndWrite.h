// What the scene file fuzzers share: a quiet log, then bytes read as a scene and written as VRML.
#ifndef ORVANE_FUZZ_LOADANDWRITE_H
#define ORVANE_FUZZ_LOADANDWRITE_H

#include "base/Log.h"
#include "base/VRMLWriteAction.h"
#include "modules/loader/SceneLoader.h"

#include <sstream>
#include <string>

namespace Orvane::Fuzz {

inline void loadAndWrite(std::string text, const char* url)
{
    static const bool quiet = [] {
        Log::the().setDefaultSinkEnabled(false);
        Log::the().setLevel(LOG_FATAL);
        return true;
    }();
    (void)quiet;
    // Fuzz input never makes the reader open a file it names.
    LoadOptions options;
    options.loadInlines = false;
    LoadedScene scene = SceneLoader::loadData(std::move(text), url, options);
    if (scene.root) {
        VRMLWriteAction    writer;
        std::ostringstream out;
        SceneLoader::write(*scene.root, writer, out);
    }
}

} // namespace Orvane::Fuzz

#endif

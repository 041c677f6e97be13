// Any bytes as an X3D XML document (the reader is chosen by content, so inputs that do not look
// like XML are made to): never a crash, a leak or a hang, and what was read writes out as VRML.
#include "fuzz/LoadAndWrite.h"
#include "modules/loader/XMLReader.h"

#include <cstdint>

// Pieces far smaller than the inputs, so that cutting a Scene's content into pieces is tried too.
extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    Orvane::XMLReader::setPieceBytes(256);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    std::string text(reinterpret_cast<const char*>(data), size);
    if (!Orvane::SceneLoader::isXml(text))
        text.insert(0, "<X3D version='4.0'>");
    Orvane::Fuzz::loadAndWrite(std::move(text), "fuzz.x3d");
    return 0;
}

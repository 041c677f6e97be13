#ifndef ORVANE_MODULES_LOADER_XMLREADER_H
#define ORVANE_MODULES_LOADER_XMLREADER_H

#include "modules/loader/SceneBuilder.h"

#include <cstddef>
#include <string>

namespace Orvane {

// The front end for the X3D XML encoding (".x3d"). The document is parsed in place, in the buffer
// it is given, the content of its Scene in pieces of about pieceBytes() (see XMLOutline), and
// walked without recursion; everything it finds goes to a SceneBuilder. Nothing is fetched: the DTD a DOCTYPE names is not read and entities a document
// declares are not expanded (their references stay as text). Faults are reported through the
// builder as file:line:column and reading goes on.
class ORVANE_LOADER_API XMLReader {
public:
    // Elements nested deeper than this are an error and skipped with what they hold.
    static constexpr int MaxDepth = 200;
    // The size of the pieces the Scene's content is parsed in, for every reader: 64 KB unless
    // set otherwise. Smaller pieces take less memory at once and more parser starts.
    static std::size_t pieceBytes();
    static void        setPieceBytes(std::size_t bytes);

    explicit XMLReader(SceneBuilder& builder);
    // Reads the whole (uncompressed) document; `text` is parsed in place and is changed. False
    // when it is no X3D scene at all (no X3D root element with a version from 3.0 to 4.1).
    bool read(std::string& text);

private:
    SceneBuilder& _builder;
};

} // namespace Orvane

#endif

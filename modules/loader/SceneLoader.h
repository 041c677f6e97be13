#ifndef ORVANE_MODULES_LOADER_SCENELOADER_H
#define ORVANE_MODULES_LOADER_SCENELOADER_H

#include "modules/loader/SceneBuilder.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane {

class WriteAction;

// A scene read from a file or from memory, with what went wrong on the way.
struct LoadedScene {
    SmartPtr<Node>         root;     // the "SceneRoot" node; null when nothing could be read
    SceneHeader            header;
    std::vector<LoadError> errors;
    bool readable() const { return root != nullptr; }
};

// How a scene is read.
struct LoadOptions {
    // Inline nodes load their local files (see SceneBuilder). Off for input that may not make
    // the reader open files it names (fuzzing, untrusted data).
    bool loadInlines = true;
};

// Reads scene files: plain or gzip-compressed, classic VRML 2.0 / X3D classic text or the X3D
// XML encoding (all known by their content, not their names). While the library is loaded it observes "loadContext"
// (so that Context::load and createContextVec read files) and resolves EXTERNPROTO URLs for the
// prototype library.
class ORVANE_LOADER_API SceneLoader {
public:
    // Decompressed input beyond this is refused, so that a small hostile file cannot take all
    // memory.
    static constexpr std::size_t MaxInflatedSize = std::size_t(1) << 30;

    // The file of a local URL or path, decompressed when it is gzip data. False when it cannot
    // be read: not local, no regular file, larger than MaxInflatedSize, unreadable or broken;
    // the reason goes to `reason` when given, else to the log.
    static bool readFile(const std::string& url, std::string& content, std::string* reason = nullptr);
    // Decompresses gzip data in place; other data is left alone. False for broken gzip data.
    static bool inflate(std::string& content);
    static bool isGzip(const std::string& content);
    // Whether (uncompressed) content is XML: "<?xml", "<X3D" or "<!DOCTYPE" first, after a byte
    // order mark, blanks and comments.
    static bool isXml(std::string_view content);

    static LoadedScene load(const std::string& url, const LoadOptions& options = {});
    // `data` read as the content of `url` (compressed or not).
    static LoadedScene loadData(std::string data, const std::string& url, const LoadOptions& options = {});
    // Reads uncompressed `data` into `builder` with the reader its content asks for. False when
    // it is no scene at all.
    static bool readScene(SceneBuilder& builder, std::string& data);

    // Writes a loaded scene's top-level nodes (with its prototypes, routes and exports) through
    // `writer`, as a file of the writer's kind, with the scene's own header statements. False
    // when the stream failed.
    static bool write(Node& root, WriteAction& writer, std::ostream& out);
    // The header statements that a loaded scene's root keeps.
    static SceneHeader header(const Node& root);

    // Registers the "loadContext" observer and the prototype resolver (done once, when the
    // library is loaded; calling it again does nothing).
    static void init();
};

} // namespace Orvane

#endif

#ifndef ORVANE_MODULES_LOADER_XMLOUTLINE_H
#define ORVANE_MODULES_LOADER_XMLOUTLINE_H

#include <cstddef>
#include <string_view>
#include <vector>

namespace Orvane {

// Where the content of an X3D document's Scene element lies, cut at top-level elements into
// pieces of about `pieceBytes` each. A whole document parsed into one tree costs several times
// its size in fresh memory; parsed piece by piece into one reused tree it costs a piece's worth.
// The scan checks only what it needs to be sure of the cuts: tags nested and closed by name,
// quoted attribute values, comments, CDATA sections, processing instructions and a DOCTYPE. On
// anything else it gives up (`found` false), and the document is parsed whole, as it reports
// its faults best then.
class XMLOutline {
public:
    // Elements open at once beyond which the scan gives up.
    static constexpr std::size_t MaxOpen = 512;

    XMLOutline(std::string_view text, std::size_t pieceBytes);

    bool found = false;
    // Offsets into the text: the name of the first Scene element under the X3D root is at
    // `sceneName`, its content lies in [contentBegin, contentEnd), and `cuts` ends each piece
    // of it, the last one at contentEnd.
    std::size_t              sceneName = 0;
    std::size_t              contentBegin = 0;
    std::size_t              contentEnd = 0;
    std::vector<std::size_t> cuts;

private:
    // Each returns the offset after the construct that starts at `at`, or npos when it is not
    // closed or not well formed.
    std::size_t skipPast(std::size_t at, std::string_view end) const;
    std::size_t skipDoctype(std::size_t at) const;
    std::size_t startTag(std::size_t at, std::string_view& name, bool& empty) const;
    std::size_t endTag(std::size_t at, std::string_view& name) const;
    void        scan(std::size_t pieceBytes);

    std::string_view _text;
};

} // namespace Orvane

#endif

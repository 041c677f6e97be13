#ifndef ORVANE_PLATFORM_TESSIL_FILELOCATOR_H
#define ORVANE_PLATFORM_TESSIL_FILELOCATOR_H

#include "base/OrvaneExport.h"

#include <string>
#include <string_view>
#include <vector>

namespace Tessil {

// An ordered list of folders in which a file name is looked up, first match wins.
// The working folder is searched only when it is in the list (add ".").
class ORVANE_API FileLocator {
public:
    FileLocator();
    ~FileLocator();

    // Appends a folder; empty entries and ones already listed are ignored.
    void addPath(const std::string& path);
    // Appends each entry of a separated list, such as the value of a search-path variable.
    void addPathList(std::string_view list, char separator = ':');
    void clearPaths();
    const std::vector<std::string>& paths() const { return _paths; }

    // The path of the first existing file (anything but a folder) called name in the search
    // folders; an absolute name is taken as it is. Empty when nothing is found.
    std::string find(const std::string& name) const;

private:
    std::vector<std::string> _paths;
};

} // namespace Tessil

#endif

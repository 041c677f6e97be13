#ifndef ORVANE_PLATFORM_TESSIL_DIR_H
#define ORVANE_PLATFORM_TESSIL_DIR_H

#include "base/OrvaneExport.h"

#include <string>
#include <string_view>
#include <vector>

namespace Tessil {

// Folder queries on std::filesystem, without exceptions: every failure is a false result.
class ORVANE_API Dir {
public:
    enum Filter { FILES = 1, DIRECTORIES = 2, ALL = 3 };

    static bool exists(const std::string& path);  // a folder exists at path
    static bool isFile(const std::string& path);  // a regular file exists at path

    // Creates the folder and any missing parents; true when the folder exists afterwards.
    static bool create(const std::string& path);

    // The names (not paths) of the folder's entries, sorted, optionally only those whose name
    // ends in suffix (for example ".cdf"). False, with names emptied, when path is no folder.
    static bool list(const std::string& path, std::vector<std::string>& names, Filter filter = ALL,
                     std::string_view suffix = std::string_view());

    // The process's working folder; empty when it cannot be determined.
    static std::string current();
};

} // namespace Tessil

#endif

#include "platform/tessil/Dir.h"

#include "base/Log.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace Tessil {

bool Dir::exists(const std::string& path)
{
    std::error_code error;
    return !path.empty() && fs::is_directory(path, error);
}

bool Dir::isFile(const std::string& path)
{
    std::error_code error;
    return !path.empty() && fs::is_regular_file(path, error);
}

bool Dir::create(const std::string& path)
{
    if (path.empty())
        return false;
    std::error_code error;
    fs::create_directories(path, error);
    if (fs::is_directory(path, error))
        return true;
    ORV_WARNING("Dir::create(): could not create %s: %s\n", path.c_str(), error.message().c_str());
    return false;
}

bool Dir::list(const std::string& path, std::vector<std::string>& names, Filter filter,
               std::string_view suffix)
{
    names.clear();
    std::error_code error;
    if (path.empty() || !fs::is_directory(path, error))
        return false;
    fs::directory_iterator it(path, error), end;
    if (error) {
        ORV_WARNING("Dir::list(): could not read %s: %s\n", path.c_str(), error.message().c_str());
        return false;
    }
    for (; it != end; it.increment(error)) {
        std::error_code statError;
        // Follows links: a link to a folder counts as a folder.
        bool isDir = it->is_directory(statError);
        if (!(filter & (isDir ? DIRECTORIES : FILES)))
            continue;
        std::string name = it->path().filename().string();
        if (name.size() < suffix.size() || name.compare(name.size() - suffix.size(), suffix.size(), suffix) != 0)
            continue;
        names.push_back(std::move(name));
    }
    if (error) {
        ORV_WARNING("Dir::list(): could not read %s: %s\n", path.c_str(), error.message().c_str());
        names.clear();
        return false;
    }
    std::sort(names.begin(), names.end());
    return true;
}

std::string Dir::current()
{
    std::error_code error;
    fs::path path = fs::current_path(error);
    return error ? std::string() : path.string();
}

} // namespace Tessil

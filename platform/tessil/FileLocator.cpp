#include "platform/tessil/FileLocator.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

namespace fs = std::filesystem;

namespace Tessil {

namespace {

bool isFileEntry(const fs::path& path)
{
    std::error_code error;
    fs::file_status status = fs::status(path, error);
    return !error && fs::exists(status) && !fs::is_directory(status);
}

} // namespace

FileLocator::FileLocator() = default;
FileLocator::~FileLocator() = default;

void FileLocator::addPath(const std::string& path)
{
    if (path.empty() || std::find(_paths.begin(), _paths.end(), path) != _paths.end())
        return;
    _paths.push_back(path);
}

void FileLocator::addPathList(std::string_view list, char separator)
{
    while (!list.empty()) {
        std::size_t end = list.find(separator);
        addPath(std::string(list.substr(0, end)));
        if (end == std::string_view::npos)
            break;
        list.remove_prefix(end + 1);
    }
}

void FileLocator::clearPaths()
{
    _paths.clear();
}

std::string FileLocator::find(const std::string& name) const
{
    if (name.empty())
        return std::string();
    fs::path file(name);
    if (file.is_absolute())
        return isFileEntry(file) ? name : std::string();
    for (const std::string& folder : _paths) {
        fs::path candidate = fs::path(folder) / file;
        if (isFileEntry(candidate))
            return candidate.string();
    }
    return std::string();
}

} // namespace Tessil

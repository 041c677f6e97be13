#include "platform/tessil/DynamicLibrary.h"

#include "base/Log.h"

#include <dlfcn.h>
#include <utility>

namespace Tessil {

namespace {

std::string lastError(const char* fallback)
{
    const char* text = dlerror();
    return text ? std::string(text) : std::string(fallback);
}

} // namespace

DynamicLibrary::DynamicLibrary() = default;

DynamicLibrary::~DynamicLibrary()
{
    close();
}

DynamicLibrary::DynamicLibrary(DynamicLibrary&& other) noexcept
    : _handle(std::exchange(other._handle, nullptr)), _path(std::move(other._path)),
      _error(std::move(other._error))
{
}

DynamicLibrary& DynamicLibrary::operator=(DynamicLibrary&& other) noexcept
{
    if (this != &other) {
        close();
        _handle = std::exchange(other._handle, nullptr);
        _path   = std::move(other._path);
        _error  = std::move(other._error);
    }
    return *this;
}

bool DynamicLibrary::open(const std::string& path, bool global)
{
    close();
    _path = path;
    dlerror();
    _handle = dlopen(path.empty() ? nullptr : path.c_str(), RTLD_NOW | (global ? RTLD_GLOBAL : RTLD_LOCAL));
    if (!_handle) {
        _error = lastError("dlopen failed");
        ORV_WARNING("DynamicLibrary::open(): %s\n", _error.c_str());
        return false;
    }
    _error.clear();
    return true;
}

bool DynamicLibrary::close()
{
    if (!_handle)
        return false;
    dlerror();
    int result = dlclose(_handle);
    _handle    = nullptr;
    if (result != 0) {
        _error = lastError("dlclose failed");
        ORV_WARNING("DynamicLibrary::close(): %s\n", _error.c_str());
        return false;
    }
    _error.clear();
    return true;
}

void* DynamicLibrary::symbol(const char* name)
{
    if (!_handle || !name) {
        _error = _handle ? "no symbol name given" : "no library is open";
        return nullptr;
    }
    // A symbol may legitimately be null, so success is told by dlerror(), not by the result.
    dlerror();
    void*       address = dlsym(_handle, name);
    const char* text    = dlerror();
    if (text) {
        _error = text;
        ORV_INFO("DynamicLibrary::symbol(): %s\n", _error.c_str());
        return nullptr;
    }
    _error.clear();
    return address;
}

} // namespace Tessil

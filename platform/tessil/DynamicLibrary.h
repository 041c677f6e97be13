#ifndef ORVANE_PLATFORM_TESSIL_DYNAMICLIBRARY_H
#define ORVANE_PLATFORM_TESSIL_DYNAMICLIBRARY_H

#include "base/OrvaneExport.h"

#include <string>
#include <type_traits>

namespace Tessil {

// A shared library loaded at run time (dlopen). The object owns the handle and closes it when
// it goes away; symbols found through it are valid only while it stays open.
class ORVANE_API DynamicLibrary {
public:
    DynamicLibrary();
    ~DynamicLibrary();

    DynamicLibrary(const DynamicLibrary&) = delete;
    DynamicLibrary& operator=(const DynamicLibrary&) = delete;
    DynamicLibrary(DynamicLibrary&& other) noexcept;
    DynamicLibrary& operator=(DynamicLibrary&& other) noexcept;

    // Loads path (a bare name is looked up the way the system linker does; an empty path is
    // the running program). Closes whatever was open before. With global, the library's
    // symbols become visible to libraries loaded later. False, with error() set, on failure.
    bool open(const std::string& path, bool global = false);
    // False when nothing was open or the system refuses.
    bool close();
    bool isOpen() const { return _handle != nullptr; }

    // The address of a symbol; null, with error() set, when the library does not have it.
    void* symbol(const char* name);

    // The symbol as a function pointer type, e.g. function<int (*)(int)>("abs").
    template <class F>
    F function(const char* name)
    {
        static_assert(std::is_pointer_v<F> && std::is_function_v<std::remove_pointer_t<F>>,
                      "F must be a function pointer type");
        return reinterpret_cast<F>(symbol(name));
    }

    const std::string& path() const { return _path; }
    // What went wrong in the last failed call; empty after a call that succeeded.
    const std::string& error() const { return _error; }

private:
    void*       _handle = nullptr;
    std::string _path;
    std::string _error;
};

} // namespace Tessil

#endif

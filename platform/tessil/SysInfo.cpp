#include "platform/tessil/SysInfo.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <typeinfo>
#include <thread>
#include <unistd.h>

namespace Tessil {

SysInfo::SysInfo() = default;

namespace {

[[noreturn]] void reportUncaught()
{
    if (std::exception_ptr current = std::current_exception()) {
        try {
            std::rethrow_exception(current);
        } catch (const std::exception& error) {
            std::fprintf(stderr, "Uncaught exception %s: %s\n", typeid(error).name(), error.what());
        } catch (...) {
            std::fprintf(stderr, "Uncaught exception of unknown type\n");
        }
    } else {
        std::fprintf(stderr, "Terminate called without an active exception\n");
    }
    std::abort();
}

} // namespace

void SysInfo::setupExceptionPolicy()
{
    std::set_terminate(&reportUncaught);
}

SysInfo& SysInfo::the()
{
    static SysInfo instance;
    return instance;
}

unsigned int SysInfo::processorCount() const
{
    unsigned int count = std::thread::hardware_concurrency();
    return count ? count : 1u;
}

std::string SysInfo::hostName() const
{
    char name[HOST_NAME_MAX + 1] = {};
    if (gethostname(name, sizeof(name) - 1) != 0)
        return std::string();
    return std::string(name);
}

long SysInfo::processId() const
{
    return static_cast<long>(getpid());
}

void SysInfo::setArguments(int argc, const char* const* argv)
{
    std::vector<std::string> arguments;
    for (int i = 0; argv && i < argc; ++i)
        if (argv[i])
            arguments.emplace_back(argv[i]);
    setArguments(std::move(arguments));
}

void SysInfo::setArguments(std::vector<std::string> arguments)
{
    std::lock_guard<std::mutex> guard(_lock);
    _arguments = std::move(arguments);
}

std::vector<std::string> SysInfo::arguments() const
{
    std::lock_guard<std::mutex> guard(_lock);
    return _arguments;
}

int SysInfo::argumentCount() const
{
    std::lock_guard<std::mutex> guard(_lock);
    return static_cast<int>(_arguments.size());
}

std::string SysInfo::argument(int index) const
{
    std::lock_guard<std::mutex> guard(_lock);
    if (index < 0 || static_cast<std::size_t>(index) >= _arguments.size())
        return std::string();
    return _arguments[static_cast<std::size_t>(index)];
}

std::string SysInfo::programName() const
{
    return argument(0);
}

bool SysInfo::environment(const char* name, std::string& value)
{
    const char* found = name ? std::getenv(name) : nullptr;
    if (!found)
        return false;
    value = found;
    return true;
}

} // namespace Tessil

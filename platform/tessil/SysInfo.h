#ifndef ORVANE_PLATFORM_TESSIL_SYSINFO_H
#define ORVANE_PLATFORM_TESSIL_SYSINFO_H

#include "base/OrvaneExport.h"

#include <mutex>
#include <string>
#include <vector>

namespace Tessil {

// Facts about the machine and the process, and the program's command line, which process
// set-up hands over once so that later code can ask for it.
class ORVANE_API SysInfo {
public:
    static SysInfo& the();

    // Logical processors, at least 1.
    unsigned int processorCount() const;
    // The machine's host name; empty when the system does not tell.
    std::string hostName() const;
    long        processId() const;

    // Keeps a copy of the program's arguments, argv[0] included. Null entries are skipped.
    void setArguments(int argc, const char* const* argv);
    void setArguments(std::vector<std::string> arguments);

    std::vector<std::string> arguments() const;
    int                      argumentCount() const;
    // The i-th argument; empty when out of range.
    std::string argument(int index) const;
    // argv[0], or empty when no arguments were handed over.
    std::string programName() const;

    // What happens to an exception that nothing catches: its type and text go to stderr before
    // the process aborts, so that the crash says why. Installing it twice changes nothing.
    static void setupExceptionPolicy();

    // An environment variable's value; false when it is not set.
    static bool environment(const char* name, std::string& value);

    SysInfo(const SysInfo&) = delete;
    SysInfo& operator=(const SysInfo&) = delete;

private:
    SysInfo();

    mutable std::mutex       _lock;
    std::vector<std::string> _arguments;
};

} // namespace Tessil

#endif

#ifndef ORVANE_PLATFORM_TESSIL_THREAD_H
#define ORVANE_PLATFORM_TESSIL_THREAD_H

#include "base/OrvaneExport.h"

#include <functional>
#include <string>
#include <thread>

namespace Tessil {

// One thread of execution running a callable. The owner starts and joins it; a thread that is
// still running when its object goes away is joined by the destructor, never detached.
class ORVANE_API Thread {
public:
    using Id = std::thread::id;

    explicit Thread(std::string name = std::string());
    ~Thread();

    Thread(const Thread&) = delete;
    Thread& operator=(const Thread&) = delete;

    // Runs body on a new thread. False (and logged) when this object already has an unjoined
    // thread or the system refuses to create one.
    bool start(std::function<void()> body);
    // Waits for the thread to finish. False when there is nothing to join, or when called from
    // the thread itself.
    bool join();
    bool joinable() const { return _thread.joinable(); }

    // The id of the running thread; a default Id when none was started or it was joined.
    Id id() const { return _thread.get_id(); }

    // The name also goes to the operating system (truncated to its limit) for debuggers.
    const std::string& name() const { return _name; }
    void               setName(std::string name) { _name = std::move(name); }

    // The id of the calling thread.
    static Id   self() { return std::this_thread::get_id(); }
    static void sleep(unsigned int milliseconds);
    static void yield() { std::this_thread::yield(); }

private:
    std::string _name;
    std::thread _thread;
};

} // namespace Tessil

#endif

#ifndef ORVANE_PLATFORM_TESSIL_MUTEX_H
#define ORVANE_PLATFORM_TESSIL_MUTEX_H

#include "base/OrvaneExport.h"

#include <mutex>

namespace Tessil {

// A plain, non-recursive mutex. It meets the standard Lockable requirements (lock, unlock,
// try_lock), so std::lock_guard, std::unique_lock and std::scoped_lock work with it.
class ORVANE_API Mutex {
public:
    Mutex();
    ~Mutex();

    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() { _mutex.lock(); }
    void unlock() { _mutex.unlock(); }
    bool tryLock() { return _mutex.try_lock(); }

    // The standard library's spelling, for std::unique_lock(m, std::try_to_lock) and friends.
    bool try_lock() { return tryLock(); }

private:
    std::mutex _mutex;
};

} // namespace Tessil

#endif

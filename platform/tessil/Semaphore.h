#ifndef ORVANE_PLATFORM_TESSIL_SEMAPHORE_H
#define ORVANE_PLATFORM_TESSIL_SEMAPHORE_H

#include "base/OrvaneExport.h"

#include <condition_variable>
#include <mutex>

namespace Tessil {

// A counting semaphore. Built on a mutex and a condition variable rather than
// std::counting_semaphore so that the count can be read and timed waits take milliseconds.
class ORVANE_API Semaphore {
public:
    explicit Semaphore(unsigned int initial = 0);
    ~Semaphore();

    Semaphore(const Semaphore&) = delete;
    Semaphore& operator=(const Semaphore&) = delete;

    // Raises the count by n and wakes as many waiters.
    void post(unsigned int n = 1);
    // Blocks until the count is positive, then lowers it by one.
    void wait();
    // Lowers the count if it is positive; never blocks.
    bool tryWait();
    // As wait(), giving up after the given number of milliseconds; true when the count was taken.
    bool waitFor(unsigned int milliseconds);

    unsigned int count() const;

private:
    mutable std::mutex      _lock;
    std::condition_variable _cond;
    unsigned int            _count;
};

} // namespace Tessil

#endif

#ifndef ORVANE_PLATFORM_TESSIL_EVENT_H
#define ORVANE_PLATFORM_TESSIL_EVENT_H

#include "base/OrvaneExport.h"

#include <condition_variable>
#include <mutex>

namespace Tessil {

// A manual-reset event: once set, every waiter passes (now and later) until reset() is called.
class ORVANE_API Event {
public:
    explicit Event(bool initiallySet = false);
    ~Event();

    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    void set();
    void reset();
    bool isSet() const;

    void wait();
    // True when the event was set within the given number of milliseconds.
    bool waitFor(unsigned int milliseconds);

private:
    mutable std::mutex      _lock;
    std::condition_variable _cond;
    bool                    _set;
};

} // namespace Tessil

#endif

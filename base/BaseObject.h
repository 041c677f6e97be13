#ifndef ORVANE_BASE_BASEOBJECT_H
#define ORVANE_BASE_BASEOBJECT_H

#include "base/OrvaneExport.h"

#include <atomic>
#include <cstdint>

namespace Orvane {

// Root of nearly every object of the library; counts live objects for leak reports.
class ORVANE_API BaseObject {
public:
    static std::uint32_t baseObjCount() { return _objCount.load(std::memory_order_relaxed); }

protected:
    BaseObject() { _objCount.fetch_add(1, std::memory_order_relaxed); }
    BaseObject(const BaseObject&) { _objCount.fetch_add(1, std::memory_order_relaxed); }
    BaseObject& operator=(const BaseObject&) = default;
    virtual ~BaseObject() { _objCount.fetch_sub(1, std::memory_order_relaxed); }

private:
    // Objects belong to the thread that owns their scene, but several scenes may live on
    // several threads; the diagnostic count is shared by all of them, so it is atomic.
    static std::atomic<std::uint32_t> _objCount;
};

} // namespace Orvane

#endif

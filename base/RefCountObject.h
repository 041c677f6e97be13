#ifndef ORVANE_BASE_REFCOUNTOBJECT_H
#define ORVANE_BASE_REFCOUNTOBJECT_H

#include "base/BaseObject.h"

#include <cstdint>

namespace Orvane {

// Intrusive reference count with a two-step end of life: when the count drops to zero the
// object is first asked to shut down, and only deleted if nobody took a new reference then.
class ORVANE_API RefCountObject : public BaseObject {
public:
    void addRef() const { ++_refCount; }
    void subRef() const
    {
        --_refCount;
        release();
    }
    void release() const;
    int  refCount() const { return _refCount; }

protected:
    RefCountObject() = default;
    RefCountObject(const RefCountObject&) : BaseObject() {}
    RefCountObject& operator=(const RefCountObject&) { return *this; }
    ~RefCountObject() override;

    virtual void shutdown() const {}

private:
    // Shuts down and deletes the object unless the shutdown took a new reference.
    void finishRelease() const;

    mutable std::int32_t _refCount = 0;
    mutable bool         _shuttingDown = false;
};

} // namespace Orvane

#endif

#include "base/RefCountObject.h"

#include "base/Log.h"

namespace Orvane {

void RefCountObject::release() const
{
    // A reference taken and dropped again while the object shuts down brings the count back to
    // zero inside shutdown(): the release already under way finishes the job, not this one.
    if (_refCount != 0 || _shuttingDown)
        return;
    _shuttingDown = true;
    shutdown();
    _shuttingDown = false;
    if (_refCount == 0) {
        delete this;
        return;
    }
    ORV_FATAL("Illegal Transition: RefCount != 0 after shutdown\n");
}

RefCountObject::~RefCountObject()
{
    if (_refCount != 0)
        ORV_FATAL("_refCount == %d in RefCountObject Destructor\n", _refCount);
}

} // namespace Orvane

#include "base/RefCountObject.h"

#include "base/Log.h"

namespace Orvane {

void RefCountObject::release() const
{
    if (_refCount != 0)
        return;
    shutdown();
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

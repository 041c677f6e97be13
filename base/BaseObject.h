#ifndef ORVANE_BASE_BASEOBJECT_H
#define ORVANE_BASE_BASEOBJECT_H

#include "base/OrvaneExport.h"

#include <cstdint>

namespace Orvane {

// Root of nearly every object of the library; counts live objects for leak reports.
class ORVANE_API BaseObject {
public:
    static std::uint32_t baseObjCount() { return _objCount; }

protected:
    BaseObject() { ++_objCount; }
    BaseObject(const BaseObject&) { ++_objCount; }
    BaseObject& operator=(const BaseObject&) = default;
    virtual ~BaseObject() { --_objCount; }

private:
    // Plain on purpose: objects are made and destroyed on the thread that owns the scene.
    static std::uint32_t _objCount;
};

} // namespace Orvane

#endif

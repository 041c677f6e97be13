#ifndef ORVANE_BASE_ROUTE_H
#define ORVANE_BASE_ROUTE_H

#include "base/BaseObject.h"

#include <cstdint>
#include <vector>

namespace Orvane {

class EventInSlot;
class EventOutSlot;
class Field;
class NodeNameSpace;
class Subject;

// Joins one out-slot to one in-slot: every event sent on the out-slot is received by the
// in-slot. The two slots own a route jointly; whoever deletes it deletes it once, and the
// destructor unhooks it from both slots and from the process-wide registry, which writers walk
// to list the routes of a scope.
class ORVANE_API Route : public BaseObject {
public:
    // A bit set. TRIGGER delivers without marking the target changed; IS joins a prototype
    // interface field to a field of the body; IMPORT forwards events of imported nodes.
    enum Type : std::uint32_t { DEFAULT = 1, TRIGGER = 2, IS = 4, IMPORT = 8 };

    // The existing route between the two slots when there is one (of whatever type); null when
    // the data types differ and the out node's context forces equal types.
    static Route* create(EventOutSlot& out, EventInSlot& in, Type type = DEFAULT);
    // Makes the slots first, as far as the fields' access types allow (all of them with `force`).
    static Route* create(Field& out, Field& in, Type type = DEFAULT, bool force = false);

    // Appends the registered routes whose type shares a bit with `mask` and, with a scope, whose
    // out node lives in it; returns the vector's new size. The order is the registry's.
    static unsigned int fillRouteVec(std::vector<Route*>& routes, NodeNameSpace* scope, Type mask);
    static unsigned int routeCount();

    static Subject& newRouteSubject();
    static Subject& deleteRouteSubject();
    // The ID of the "forceSingleDataTypeRoute" context parameter.
    static unsigned int forceSingleDataTypeRouteParam();

    EventOutSlot& outSlot() const { return *_outSlot; }
    EventInSlot&  inSlot() const { return *_inSlot; }
    Type          type() const { return _type; }

    // The name of a type value 0 to 8, "INVALID" for the values between the bits.
    static const char* typeName(unsigned int type);

    void dump() const;

    ~Route() override;
    Route(const Route&) = delete;
    Route& operator=(const Route&) = delete;

private:
    Route(EventOutSlot& out, EventInSlot& in, Type type);

    EventOutSlot* _outSlot;
    EventInSlot*  _inSlot;
    Type          _type;
};

} // namespace Orvane

#endif

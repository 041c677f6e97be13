#ifndef ORVANE_BASE_EVENTOUTSLOT_H
#define ORVANE_BASE_EVENTOUTSLOT_H

#include "base/EventSlot.h"

namespace Orvane {

class EventInSlot;

// The sending side of a field: hands a value to the in-slot of every route in the order the
// routes were made, synchronously and depth first.
class ORVANE_API EventOutSlot : public EventSlot {
public:
    explicit EventOutSlot(Field& field) : EventSlot(field) {}
    EventOutSlot(const EventOutSlot& other);

    NodePartType       type() const override { return EventOutPartType; }
    const std::string& typeName() const override;
    const char*        findName() const override;

    void processEvent(const double& time, unsigned char* data, unsigned int size) override;
    void processEvent(const double& time, const char* str) override;
    void processEvent(const double& time) override;
    void processEvent(const double& time, Field& value, ConvertParam* param) override;

    // A DEFAULT route to `to`; the existing one when there is one.
    Route* connect(EventInSlot& to);
    // Deletes the first route to `to`; false for null or none.
    bool   disconnect(EventInSlot* to);
    Route* findRoute(EventInSlot* to) const;

    // With `onlyIS` only IS routes deliver: the node is being set up and only its prototype
    // interface may hear of it.
    void sendEvent(const double& time, Field& value, ConvertParam* param, bool onlyIS);
    void sendEvent(const double& time, unsigned char* data, unsigned int size, bool onlyIS);
    void sendEvent(const double& time, const char* str, bool onlyIS);
    // Sends the field's own value.
    void sendEvent(const double& time, bool onlyIS);
};

} // namespace Orvane

#endif

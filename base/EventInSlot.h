#ifndef ORVANE_BASE_EVENTINSLOT_H
#define ORVANE_BASE_EVENTINSLOT_H

#include "base/EventSlot.h"

namespace Orvane {

class EventOutSlot;

// The receiving side of a field. A received value is set on the field (converted when the
// types differ), marks it changed, lets the node react and is sent on through the field's
// out-slot, unless the field is already sending, which is what ends a cycle of routes.
class ORVANE_API EventInSlot : public EventSlot {
public:
    explicit EventInSlot(Field& field) : EventSlot(field) {}
    EventInSlot(const EventInSlot& other);

    NodePartType       type() const override { return EventInPartType; }
    const std::string& typeName() const override;
    const char*        findName() const override;

    void processEvent(const double& time, unsigned char* data, unsigned int size) override;
    void processEvent(const double& time, const char* str) override;
    void processEvent(const double& time) override;
    void processEvent(const double& time, Field& value, ConvertParam* param) override;

    // A DEFAULT route from `from`; the existing one when there is one.
    Route* connect(EventOutSlot& from);
    // Deletes the first route from `from`; false for null or none.
    bool   disconnect(EventOutSlot* from);
    Route* findRoute(EventOutSlot* from) const;

    // `route` is the route the event came over, null from outside the route graph.
    void receiveEvent(const double& time, Field& value, ConvertParam* param, Route* route);
    void receiveEvent(const double& time, unsigned char* data, unsigned int size, Route* route);
    void receiveEvent(const double& time, const char* str, Route* route);
    // An event without data: the field's own value goes on.
    void receiveEvent(const double& time, Route* route);

private:
    friend class Field;

    // The field's out-slot while the field has no listeners, kept by the field: every hop of
    // a cascade passes the value on from here without looking at the field's slot record.
    EventOutSlot* _fastOut = nullptr;
};

} // namespace Orvane

#endif

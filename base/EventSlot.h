#ifndef ORVANE_BASE_EVENTSLOT_H
#define ORVANE_BASE_EVENTSLOT_H

#include "base/BaseObject.h"
#include "base/NodePart.h"

#include <string>
#include <vector>

namespace Orvane {

class ConvertParam;
class Field;
class Node;
class Route;
class Subject;

// The connection point of one field for events: the in-slot receives, the out-slot sends.
// Routes join one out-slot to one in-slot; each slot keeps the routes that touch it in the
// order they were made. A field owns its slots and deletes them with itself.
class ORVANE_API EventSlot : public BaseObject {
public:
    using RouteBag = std::vector<Route*>;

    explicit EventSlot(Field& field);
    // Slots are not copied; this reports the attempt and leaves the copy without routes.
    EventSlot(const EventSlot& other);
    EventSlot& operator=(const EventSlot&) = delete;
    // Deletes the slot's routes, which unhook themselves from both ends.
    ~EventSlot() override;

    virtual NodePartType       type() const = 0;
    virtual const std::string& typeName() const = 0;
    // The field's descriptor name; null without descriptor.
    virtual const char*        findName() const = 0;

    // Events from outside the route graph: with data, with text, without data (the field's own
    // value), or from another field.
    virtual void processEvent(const double& time, unsigned char* data, unsigned int size) = 0;
    virtual void processEvent(const double& time, const char* str) = 0;
    virtual void processEvent(const double& time) = 0;
    virtual void processEvent(const double& time, Field& value, ConvertParam* param) = 0;

    Field&          field() const { return *_field; }
    Node&           node() const { return *_node; }
    const RouteBag& routeBag() const { return _routeBag; }

    void disconnectAll();
    // With `all` false: whether some route is not a DEFAULT one.
    bool         hasAnyRoute(bool all = true) const;
    // With `all` false: the number of DEFAULT routes. (The two false variants count opposite
    // things; callers rely on both.)
    unsigned int routeCount(bool all = true) const;

    // Told of every event through this slot; made on first use, named after the field.
    Subject& processEventSubject();
    // The slot's subject when it exists, else null.
    Subject* processEventSubjectIfAny() const { return _processEventSubject; }
    // Told of every event sent and received anywhere.
    static Subject& anyProcessEventSubject();

    void dump() const;

protected:
    // The field's descriptor name, or "NoName".
    const char* nameOrNoName() const;

    Field*   _field;
    // The field's owner, which never changes: kept here so that an event reaches the node
    // without first waiting for the field.
    Node*    _node;
    Subject* _processEventSubject = nullptr;
    RouteBag _routeBag;

private:
    friend class Route;
};

} // namespace Orvane

#endif

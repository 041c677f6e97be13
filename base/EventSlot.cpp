#include "base/EventSlot.h"

#include "base/Field.h"
#include "base/Log.h"
#include "base/NodePartDesc.h"
#include "base/Route.h"
#include "base/Subject.h"

namespace Orvane {

Subject& EventSlot::anyProcessEventSubject()
{
    static Subject& subject = *new Subject("anyProcessEvent");
    return subject;
}

namespace {
// Made while the library loads, so that observers can attach before the first event.
[[maybe_unused]] const Subject& anyProcessEventMade = EventSlot::anyProcessEventSubject();
} // namespace

EventSlot::EventSlot(Field& field) : _field(&field), _node(&field.owner()) {}

EventSlot::EventSlot(const EventSlot& other) : BaseObject(other), _field(other._field), _node(other._node)
{
    ORV_FATAL("Calling EventSlot copy constructor\n");
}

EventSlot::~EventSlot()
{
    disconnectAll();
    if (_processEventSubject) {
        _processEventSubject->detachAll();
        delete _processEventSubject;
    }
}

const char* EventSlot::nameOrNoName() const
{
    const NodePartDesc* desc = _field->desc();
    return desc ? desc->name().c_str() : "NoName";
}

void EventSlot::disconnectAll()
{
    // Each route takes itself out of this bag (and the other end's) when it is deleted.
    while (!_routeBag.empty()) {
        Route* route = _routeBag.front();
        if (!route) {
            ORV_FATAL("Invalid Route in EventSlot\n");
            _routeBag.erase(_routeBag.begin());
            continue;
        }
        delete route;
    }
}

bool EventSlot::hasAnyRoute(bool all) const
{
    if (all)
        return !_routeBag.empty();
    for (const Route* route : _routeBag) {
        if (!route) {
            ORV_FATAL("Invalid Route in EventSlot\n");
            continue;
        }
        if (route->type() != Route::DEFAULT)
            return true;
    }
    return false;
}

unsigned int EventSlot::routeCount(bool all) const
{
    if (all)
        return static_cast<unsigned int>(_routeBag.size());
    unsigned int count = 0;
    for (const Route* route : _routeBag) {
        if (!route) {
            ORV_FATAL("Invalid Route in EventSlot\n");
            continue;
        }
        if (route->type() == Route::DEFAULT)
            ++count;
    }
    return count;
}

Subject& EventSlot::processEventSubject()
{
    if (!_processEventSubject)
        _processEventSubject = new Subject(nameOrNoName());
    return *_processEventSubject;
}

void EventSlot::dump() const
{
    ORV_PLOG("%s: %s, dataType %s, routes: %d\n", typeName().c_str(), nameOrNoName(), _field->dataTypeName().c_str(),
             static_cast<int>(_routeBag.size()));
}

} // namespace Orvane

#include "base/EventInSlot.h"

#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/Route.h"
#include "base/Subject.h"

namespace Orvane {

EventInSlot::EventInSlot(const EventInSlot& other) : EventSlot(other)
{
    ORV_FATAL("Run invalid EventInSlot copy constructor\n");
}

const std::string& EventInSlot::typeName() const
{
    static const std::string name = "eventIn";
    return name;
}

const char* EventInSlot::findName() const
{
    const NodePartDesc* desc = _field->desc();
    return desc ? desc->name().c_str() : nullptr;
}

// --- events from outside the route graph ---

void EventInSlot::processEvent(const double& time, unsigned char* data, unsigned int size)
{
    receiveEvent(time, data, size, nullptr);
}

void EventInSlot::processEvent(const double& time, const char* str)
{
    receiveEvent(time, str, nullptr);
}

void EventInSlot::processEvent(const double& time)
{
    receiveEvent(time, static_cast<Route*>(nullptr));
}

void EventInSlot::processEvent(const double& time, Field& value, ConvertParam* param)
{
    receiveEvent(time, value, param, nullptr);
}

// --- routes ---

Route* EventInSlot::connect(EventOutSlot& from)
{
    return Route::create(from, *this, Route::DEFAULT);
}

bool EventInSlot::disconnect(EventOutSlot* from)
{
    Route* route = findRoute(from);
    if (!route)
        return false;
    delete route;
    return true;
}

Route* EventInSlot::findRoute(EventOutSlot* from) const
{
    if (!from)
        return nullptr;
    for (Route* route : _routeBag)
        if (route && &route->outSlot() == from)
            return route;
    return nullptr;
}

// --- receiving ---

void EventInSlot::receiveEvent(const double& time, unsigned char* data, unsigned int size, Route* route)
{
    _field->setValueByBin(data, size);
    receiveEvent(time, *_field, nullptr, route);
}

void EventInSlot::receiveEvent(const double& time, const char* str, Route* route)
{
    _field->setValueByStr(str);
    receiveEvent(time, *_field, nullptr, route);
}

void EventInSlot::receiveEvent(const double& time, Route* route)
{
    const NodePartDesc* desc = _field->desc();
    if (desc && !desc->autoProcess()) {
        ORV_WARNING("EventInSlot::receiveEvent without field data on NO_AP field\n");
        return;
    }
    receiveEvent(time, *_field, nullptr, route);
}

void EventInSlot::receiveEvent(const double& time, Field& value, ConvertParam* param, Route* route)
{
    Field&              own = *_field;
    Node&               node = own.owner();
    const NodePartDesc* desc = own.desc();
    bool                processNode = desc != nullptr;
    const bool          forward = desc ? desc->autoProcess() : true;
    bool                onlyIS = false;
    const unsigned      routeType = route ? route->type() : 0u;

    if (!desc && !_processEventSubject)
        ORV_PLOG("EventInSlot::receiveEvent without desc\n");

    // A node being set up hears only its prototype interface; any other event realizes it.
    if (node.state() == Setup) {
        if (routeType & Route::IS) {
            processNode = false;
            onlyIS = true;
        } else {
            node.setNodeState(time, Realize);
        }
    }

    Field* source = nullptr;
    if (&value != &own) {
        if (!own.setValueByField(value, param)) {
            ORV_FATAL("receiveEvent(): _field.setValueByField() failed\n");
            ORV_FATAL("  %s field: %s.%s\n", own.dataTypeName().c_str(), node.type().name().c_str(),
                      own.nameOrNoName());
            ORV_FATAL("  %s input: %s.%s\n", value.dataTypeName().c_str(), value.owner().type().name().c_str(),
                      value.nameOrNoName());
        } else if (!(routeType & Route::TRIGGER)) {
            own.markChanged();
        }
        source = &value;
    }

    if (desc && node.checkLogFeature(LogEventIn))
        ORV_PLOG("%s/%s/%s/%s ReceiveEvent on %s: %f/%s\n", node.type().name().c_str(),
                 node.nameSpace().name().c_str(), node.getIDStr().c_str(), processNode ? "pro" : "noPro",
                 desc->name().c_str(), time, value.strValue().c_str());

    Subject& any = anyProcessEventSubject();
    if (any.observerCount())
        any.notify(time, this, &value);
    if (_processEventSubject && _processEventSubject->observerCount())
        _processEventSubject->notify(time, this, &value);

    // The field is still sending: the event came round a cycle. Its value is already set; only
    // the reaction and the onward cascade are cut.
    if (desc && node.checkIsChangingMask(desc->mask())) {
        ORV_INFO("Field %s/%s.%s is already changing; break loop\n", node.type().name().c_str(),
                 node.getIDStr().c_str(), desc->name().c_str());
        return;
    }

    if (processNode)
        node.fieldChanged(own, time, source);
    if (forward)
        own.send(time, true, onlyIS);
}

} // namespace Orvane

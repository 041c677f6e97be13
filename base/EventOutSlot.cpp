#include "base/EventOutSlot.h"

#include "base/EventInSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/Route.h"
#include "base/Subject.h"

namespace Orvane {

namespace {

// The global subject, asked on every event: held here so that the hop does not call out for it.
Subject& anySubject()
{
    static Subject& subject = EventSlot::anyProcessEventSubject();
    return subject;
}

// Out of line and cold: the hop's stack frame, which a long cascade repeats once per node,
// stays small. The line names the operation it reports for, not this helper.
[[gnu::cold, gnu::noinline]] void logSend(const char* function, const Node& node, const NodePartDesc& desc,
                                          const double& time, const Field& value)
{
    Log::the().write(LOG_LOG, "Orvane", logSourcePath(__FILE__), __LINE__, function,
                     "%s/%s/%s SendEvent on %s: %f/%s\n", node.type().name().c_str(), node.nameSpace().name().c_str(),
                     node.getIDStr().c_str(), desc.name().c_str(), time, value.strValue().c_str());
}

} // namespace

EventOutSlot::EventOutSlot(const EventOutSlot& other) : EventSlot(other)
{
    ORV_FATAL("Run invalid EventOutSlot copy constructor\n");
}

const std::string& EventOutSlot::typeName() const
{
    static const std::string name = "eventOut";
    return name;
}

const char* EventOutSlot::findName() const
{
    const NodePartDesc* desc = _field->desc();
    return desc ? desc->name().c_str() : nullptr;
}

// --- events from outside the route graph ---

void EventOutSlot::processEvent(const double& time, unsigned char* data, unsigned int size)
{
    sendEvent(time, data, size, false);
}

void EventOutSlot::processEvent(const double& time, const char* str)
{
    sendEvent(time, str, false);
}

void EventOutSlot::processEvent(const double& time)
{
    sendEvent(time, false);
}

void EventOutSlot::processEvent(const double& time, Field& value, ConvertParam* param)
{
    sendEvent(time, value, param, false);
}

// --- routes ---

Route* EventOutSlot::connect(EventInSlot& to)
{
    return Route::create(*this, to, Route::DEFAULT);
}

bool EventOutSlot::disconnect(EventInSlot* to)
{
    Route* route = findRoute(to);
    if (!route)
        return false;
    delete route;
    return true;
}

Route* EventOutSlot::findRoute(EventInSlot* to) const
{
    if (!to)
        return nullptr;
    for (Route* route : _routeBag)
        if (route && &route->inSlot() == to)
            return route;
    return nullptr;
}

// --- sending ---

void EventOutSlot::sendEvent(const double& time, unsigned char* data, unsigned int size, bool onlyIS)
{
    _field->setValueByBin(data, size);
    sendEvent(time, *_field, nullptr, onlyIS);
}

void EventOutSlot::sendEvent(const double& time, const char* str, bool onlyIS)
{
    _field->setValueByStr(str);
    sendEvent(time, *_field, nullptr, onlyIS);
}

void EventOutSlot::sendEvent(const double& time, bool onlyIS)
{
    sendEvent(time, *_field, nullptr, onlyIS);
}

void EventOutSlot::sendEvent(const double& time, Field& value, ConvertParam* param, bool onlyIS)
{
    Node& node = *_node;

    if (node.checkLogFeature(LogEventOut) && _field->desc())
        logSend(__PRETTY_FUNCTION__, node, *_field->desc(), time, value);

    // Importing scopes see the events of exported nodes through the node's processor.
    if (node.isExported())
        if (NodeProc* proc = node.proc())
            proc->exportEvent(*this, value, time);

    Subject& any = anySubject();
    if (any.observerCount())
        any.notify(time, this, &value);
    if (_processEventSubject && _processEventSubject->observerCount())
        _processEventSubject->notify(time, this, &value);

    // By index, and the size read again each step: a receiver may add or delete routes of this
    // slot. A route added is delivered in this pass, one deleted further on is not.
    for (std::size_t i = 0; i < _routeBag.size(); ++i) {
        Route* route = _routeBag[i];
        if (!route) {
            ORV_FATAL("No valid route entry in EventOutSlot::_routeBag\n");
            continue;
        }
        if (!onlyIS || (route->type() & Route::IS))
            route->inSlot().receiveEvent(time, value, param, route);
    }
}

} // namespace Orvane

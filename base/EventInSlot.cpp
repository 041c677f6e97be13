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

namespace {

// The global subject, asked on every event: held here so that the hop does not call out for it.
Subject& anySubject()
{
    static Subject& subject = EventSlot::anyProcessEventSubject();
    return subject;
}

// The log lines of a hop, out of line and cold: the hop's stack frame, which a long cascade
// repeats once per node, stays small. Each names the operation it reports for, not itself.
#define ORV_HOP_LOG(level, function, ...)                                                             \
    do {                                                                                             \
        if (::Orvane::Log::the().enabled(level))                                                     \
            ::Orvane::Log::the().write(level, "Orvane", ::Orvane::logSourcePath(__FILE__), __LINE__,   \
                                       function, __VA_ARGS__);                                       \
    } while (0)

[[gnu::cold, gnu::noinline]] void logSetValueFailed(const char* function, const Field& own, const Field& value)
{
    ORV_HOP_LOG(LOG_FATAL, function, "receiveEvent(): _field.setValueByField() failed\n");
    ORV_HOP_LOG(LOG_FATAL, function, "  %s field: %s.%s\n", own.dataTypeName().c_str(),
                own.owner().type().name().c_str(), own.nameOrNoName());
    ORV_HOP_LOG(LOG_FATAL, function, "  %s input: %s.%s\n", value.dataTypeName().c_str(),
                value.owner().type().name().c_str(), value.nameOrNoName());
}

[[gnu::cold, gnu::noinline]] void logReceive(const char* function, const Node& node, const NodePartDesc& desc,
                                             bool processNode, const double& time, const Field& value)
{
    ORV_HOP_LOG(LOG_LOG, function, "%s/%s/%s/%s ReceiveEvent on %s: %f/%s\n", node.type().name().c_str(),
                node.nameSpace().name().c_str(), node.getIDStr().c_str(), processNode ? "pro" : "noPro",
                desc.name().c_str(), time, value.strValue().c_str());
}

[[gnu::cold, gnu::noinline]] void logLoopBreak(const char* function, const Node& node, const NodePartDesc& desc)
{
    ORV_HOP_LOG(LOG_INFO, function, "Field %s/%s.%s is already changing; break loop\n", node.type().name().c_str(),
                node.getIDStr().c_str(), desc.name().c_str());
}

} // namespace

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
    Node&               node = *_node;
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
            logSetValueFailed(__PRETTY_FUNCTION__, own, value);
        } else if (!(routeType & Route::TRIGGER)) {
            // Field::markChanged, without the call when the parents already know.
            if (desc && node.hasFlag(Node::MarkedFlag))
                node.markChanged(desc->mask());
            else
                own.markChanged();
        }
        source = &value;
    }

    if (desc && node.checkLogFeature(LogEventIn))
        logReceive(__PRETTY_FUNCTION__, node, *desc, processNode, time, value);

    Subject& any = anySubject();
    if (any.observerCount())
        any.notify(time, this, &value);
    if (_processEventSubject && _processEventSubject->observerCount())
        _processEventSubject->notify(time, this, &value);

    // The field is still sending: the event came round a cycle. Its value is already set; only
    // the reaction and the onward cascade are cut.
    if (desc && node.checkIsChangingMask(desc->mask())) {
        logLoopBreak(__PRETTY_FUNCTION__, node, *desc);
        return;
    }

    if (processNode)
        node.fieldChanged(own, time, source);
    if (!forward)
        return;
    // The common case of Field::send (an out-slot, no listeners) done here: one call less on
    // every hop of a cascade, whose depth is the length of the route chain.
    if (EventOutSlot* out = _fastOut) {
        const PartMask mask = desc ? desc->mask() : NodePart::_nullMask;
        node.setIsChanging(mask);
        out->sendEvent(time, own, nullptr, onlyIS);
        node.clearIsChanging(mask);
        return;
    }
    own.send(time, true, onlyIS);
}

} // namespace Orvane

#include "base/Route.h"

#include "base/Context.h"
#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodeProc.h"
#include "base/NodeType.h"
#include "base/Subject.h"
#include "platform/tessil/Mutex.h"

#include <algorithm>
#include <mutex>
#include <set>
#include <string>

namespace Orvane {

namespace {

// Every live route, for the writers. Never destroyed: routes may die during static destruction.
struct RouteRegistry {
    Tessil::Mutex   lock;
    std::set<Route*> routes;
};

RouteRegistry& registry()
{
    static RouteRegistry& r = *new RouteRegistry;
    return r;
}

// Routes inside a prototype's declaration and routes of the system's own nodes are no live data
// flow of the scene: they do not mark the scopes.
constexpr std::uint32_t noDynamicContentFlags = Node::ProtoBodyFlag | Node::SystemFlag;
// The scope's dynamic-content bit for data-flow routes.
constexpr unsigned routeContentBit = 2u;

bool isWildcard(NodePartDataType type)
{
    return type == XFAnyType || type == SFAnyType || type == MFAnyType;
}

// Takes the route out of a bag, keeping the others in order.
void removeFromBag(std::vector<Route*>& bag, Route* route)
{
    auto found = std::find(bag.begin(), bag.end(), route);
    if (found == bag.end()) {
        ORV_FATAL("Invalid Route link removal: %d\n", 0);
        return;
    }
    bag.erase(found);
}

const char* fieldName(const Field& field)
{
    return field.nameOrNoName();
}

// Registered while the library loads, whatever the order of the static constructors.
[[maybe_unused]] const unsigned forceSingleDataTypeRouteRegistered = Route::forceSingleDataTypeRouteParam();
[[maybe_unused]] const Subject& newRouteMade = Route::newRouteSubject();
[[maybe_unused]] const Subject& deleteRouteMade = Route::deleteRouteSubject();
[[maybe_unused]] const RouteRegistry& registryMade = registry();

} // namespace

Subject& Route::newRouteSubject()
{
    static Subject& subject = *new Subject("newRoute");
    return subject;
}

Subject& Route::deleteRouteSubject()
{
    static Subject& subject = *new Subject("deleteRoute");
    return subject;
}

unsigned int Route::forceSingleDataTypeRouteParam()
{
    static const unsigned int id = Context::createParamID(
        "forceSingleDataTypeRoute", "force routes to connect only slots with same type", "Route", false);
    return id;
}

const char* Route::typeName(unsigned int type)
{
    static const char* const names[] = {"INVALID", "DEFAULT", "TRIGGER", "INVALID", "IS",
                                        "INVALID", "INVALID", "INVALID", "IMPORT"};
    return type <= 8 ? names[type] : "INVALID";
}

// --- making routes ---

Route* Route::create(EventOutSlot& out, EventInSlot& in, Type type)
{
    if (Route* existing = out.findRoute(&in)) {
        ORV_FATAL("Will not create a Route a second time:\n");
        existing->dump();
        return existing;
    }
    const NodePartDataType outType = out.field().dataType();
    const NodePartDataType inType = in.field().dataType();
    if (outType != inType && !isWildcard(outType) && !isWildcard(inType)) {
        // Only the sending node's context decides, whatever the receiving one says.
        Context* context = out.node().context();
        if (context && context->paramBValue(forceSingleDataTypeRouteParam())) {
            ORV_WARNING("Invalid type mismatch in Route::create(): \n");
            out.dump();
            in.dump();
            return nullptr;
        }
        // The value is converted at each delivery.
        ORV_NOTICE("Valid type mismatch in Route::create(): \n");
    }
    return new Route(out, in, type);
}

Route* Route::create(Field& out, Field& in, Type type, bool force)
{
    EventOutSlot* outSlot = out.getOutSlot(true, force);
    EventInSlot*  inSlot = in.getInSlot(true, force);
    if (!outSlot || !inSlot) {
        ORV_FATAL("Route::create() on field failed %s.%s to %s.%s\n", out.owner().getIDStr().c_str(), fieldName(out),
                  in.owner().getIDStr().c_str(), fieldName(in));
        return nullptr;
    }
    return create(*outSlot, *inSlot, type);
}

Route::Route(EventOutSlot& out, EventInSlot& in, Type type) : _outSlot(&out), _inSlot(&in), _type(type)
{
    out._routeBag.push_back(this);
    in._routeBag.push_back(this);

    Node& outNode = out.node();
    Node& inNode = in.node();
    if (NodeProc* proc = outNode.proc())
        proc->routeAdded(*this);
    if (NodeProc* proc = inNode.proc())
        proc->routeAdded(*this);

    if (newRouteSubject().observerCount())
        newRouteSubject().notify(0.0, this);

    if (outNode.checkLogFeature(LogRoute) || inNode.checkLogFeature(LogRoute)) {
        std::string names;
        for (unsigned bit : {DEFAULT, TRIGGER, IS, IMPORT})
            if (_type & bit)
                names += typeName(bit);
        // The receiving end first, as the log readers expect.
        ORV_PLOG("Create %s-Route %s/%s.%s to %s/%s.%s\n", names.c_str(), inNode.type().name().c_str(),
                 inNode.getIDStr().c_str(), fieldName(in.field()), outNode.type().name().c_str(),
                 outNode.getIDStr().c_str(), fieldName(out.field()));
    }

    if (!(_type & TRIGGER) && !(outNode.flags() & noDynamicContentFlags) && !(inNode.flags() & noDynamicContentFlags)) {
        outNode.nameSpace().markDynamicContent(routeContentBit);
        if (&inNode.nameSpace() != &outNode.nameSpace())
            inNode.nameSpace().markDynamicContent(routeContentBit);
    }

    RouteRegistry& r = registry();
    std::lock_guard<Tessil::Mutex> lock(r.lock);
    r.routes.insert(this);
}

Route::~Route()
{
    Node& outNode = _outSlot->node();
    Node& inNode = _inSlot->node();
    if (NodeProc* proc = outNode.proc())
        proc->routeRemoved(*this);
    if (NodeProc* proc = inNode.proc())
        proc->routeRemoved(*this);

    if (deleteRouteSubject().observerCount())
        deleteRouteSubject().notify(0.0, this);

    if (outNode.checkLogFeature(LogRoute) || inNode.checkLogFeature(LogRoute))
        ORV_PLOG("Remove Route %s/%s.%s to %s/%s.%s\n", inNode.type().name().c_str(), inNode.getIDStr().c_str(),
                 fieldName(_inSlot->field()), outNode.type().name().c_str(), outNode.getIDStr().c_str(),
                 fieldName(_outSlot->field()));

    removeFromBag(_outSlot->_routeBag, this);
    removeFromBag(_inSlot->_routeBag, this);

    RouteRegistry& r = registry();
    std::lock_guard<Tessil::Mutex> lock(r.lock);
    r.routes.erase(this);
}

// --- the registry ---

unsigned int Route::fillRouteVec(std::vector<Route*>& routes, NodeNameSpace* scope, Type mask)
{
    RouteRegistry& r = registry();
    std::lock_guard<Tessil::Mutex> lock(r.lock);
    for (Route* route : r.routes) {
        if (!(route->_type & mask))
            continue;
        if (scope && &route->_outSlot->node().nameSpace() != scope)
            continue;
        routes.push_back(route);
    }
    return static_cast<unsigned int>(routes.size());
}

unsigned int Route::routeCount()
{
    RouteRegistry& r = registry();
    std::lock_guard<Tessil::Mutex> lock(r.lock);
    return static_cast<unsigned int>(r.routes.size());
}

void Route::dump() const
{
    ORV_PLOG("Route: %s\n", typeName(_type));
    _outSlot->dump();
    _inSlot->dump();
}

} // namespace Orvane

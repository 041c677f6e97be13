#include "base/GXDWriteAction.h"

#include "base/EventInSlot.h"
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Node.h"
#include "base/NodeLink.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/Route.h"

namespace Orvane {

namespace {

constexpr std::string_view slotIndent = "          ";

} // namespace

GXDWriteAction::GXDWriteAction(const double& timeStamp) : WriteAction(timeStamp)
{
    GXDWriteAction::reset();
}

GXDWriteAction::GXDWriteAction(const GXDWriteAction& other)
    : WriteAction(other), _routes(other._routes), _routeSet(other._routeSet), _components(other._components),
      _componentNames(other._componentNames)
{
}

GXDWriteAction::~GXDWriteAction() = default;

void GXDWriteAction::reset()
{
    _routes.clear();
    _routeSet.clear();
    _components.clear();
    _componentNames.clear();
    WriteAction::reset();
}

void GXDWriteAction::putAttribute(std::string_view text)
{
    std::size_t from = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char* entity = text[i] == '&' ? "&amp;" : text[i] == '<' ? "&lt;" : text[i] == '"' ? "&quot;" : nullptr;
        if (!entity)
            continue;
        put(text.substr(from, i - from));
        put(entity);
        from = i + 1;
    }
    put(text.substr(from));
}

void GXDWriteAction::begin(std::ostream& stream, const std::string&)
{
    setStream(stream);
    if (good())
        put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Graph>\n");
}

void GXDWriteAction::end()
{
    if (good())
        put("\n\n");
    flushRouteBag(true);
    if (good())
        put("\n</Graph>\n");
    resetStream();
}

bool GXDWriteAction::beginNode(Node& node)
{
    auto [it, added] = _componentNames.try_emplace(&node, node.getIDStr());
    if (!added)
        return false;
    _components.push_back(&node);
    if (!good())
        return true;

    indent();
    put("<Component name=\"");
    putAttribute(it->second);
    put("\" type=\"");
    putAttribute(node.type().name());
    put("\" >\n");

    put(slotIndent);
    put("<Slot name=\"parent_NodeLink\" majorType=\"1\" isInSlot=\"true\"/>\n");
    for (unsigned id = 0, count = node.partCount(); id < count; ++id) {
        // Fields not made yet have their slots all the same: the descriptor tells them.
        const Field* field = node.builtField(id);
        if (!field && !node.madeOnDemand(id))
            break;
        const NodePartDesc* desc = field ? field->desc() : node.type().part(id);
        if (!desc)
            continue;
        NodePartType type = desc->partType();
        auto eventSlot = [&](const std::string& name, const char* direction) {
            put(slotIndent);
            put("<Slot name=\"");
            putAttribute(name);
            put("\" majorType=\"2\" minorType=\"");
            putInt(desc->dataType());
            put("\" ");
            put(direction);
            put("=\"true\"/>\n");
        };
        if (type == EventInPartType || type == ExposedFieldPartType)
            eventSlot(desc->inSlotName(), "isInSlot");
        if (type == EventOutPartType || type == ExposedFieldPartType)
            eventSlot(desc->outSlotName(), "isOutSlot");
        if ((type == FieldPartType || type == ExposedFieldPartType) && desc->isNodeField()) {
            put(slotIndent);
            put("<Slot name=\"");
            putAttribute(desc->name());
            put("_NodeLink\" majorType=\"1\" isOutSlot=\"true\"/>\n");
        }
    }
    put("</Component>\n");
    return true;
}

int GXDWriteAction::endNode(Node&)
{
    return indentLevel();
}

void GXDWriteAction::writeRoute(Route& route)
{
    if (_routeSet.insert(&route).second)
        _routes.push_back(&route);
}

void GXDWriteAction::putEdge(std::string_view outComponent, std::string_view outSlot, std::string_view suffix,
                             std::string_view inComponent, std::string_view inSlot)
{
    indent();
    put("<Edge outComponent=\"");
    putAttribute(outComponent);
    put("\" outSlot=\"");
    putAttribute(outSlot);
    put(suffix);
    put("\"\n");
    indent();
    put("       inComponent=\"");
    putAttribute(inComponent);
    put("\" inSlot=\"");
    putAttribute(inSlot);
    put("\"/>\n");
}

void GXDWriteAction::flushRouteBag(bool pop)
{
    if (good()) {
        for (Node* child : _components) {
            for (NodeLink* link : child->parentLinks()) {
                Node* parent = link->parent();
                auto  it = parent ? _componentNames.find(parent) : _componentNames.end();
                if (it == _componentNames.end())
                    continue;
                putEdge(it->second, link->getField()->nameOrNoName(), "_NodeLink", _componentNames[child],
                        "parent_NodeLink");
            }
        }
        put('\n');
        for (Route* route : _routes) {
            const char* outSlot = route->outSlot().findName();
            const char* inSlot = route->inSlot().findName();
            putEdge(route->outSlot().node().getIDStr(), outSlot ? outSlot : "", "", route->inSlot().node().getIDStr(),
                    inSlot ? inSlot : "");
        }
    }
    if (pop) {
        _routes.clear();
        _routeSet.clear();
    }
}

} // namespace Orvane

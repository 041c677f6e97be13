// Any node and field names given to createRoute, deleteRoute, findNode and the import/export
// calls of a small scene, with events sent along whatever routes come about: never a crash, and
// the scene, its routes and everything made for them are gone when the scene is released.
//
// The input is a list of lines; a line is an operation letter followed by up to four names
// separated by '|'. A missing name is passed as null, a single digit stands for one of the
// scene's node names (first and third name) or field names (second and fourth), so that the
// fuzzer reaches working routes early, and "@" stands for the ID text of the unnamed node.
#include "base/EventOutSlot.h"
#include "base/Field.h"
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/Route.h"
#include "base/SFFloat.h"
#include "base/SmartPtr.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

using namespace Orvane;

namespace {

NodePartDesc sensorParts[] = {
    NodePartDesc(0, PartMask::bit(0), ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "value"),
    NodePartDesc(1, PartMask::bit(1), ExposedFieldPartType, SFInt32Type, NodePartDesc::CtorAutoProcess, "count"),
    NodePartDesc(2, PartMask::bit(2), ExposedFieldPartType, SFStringType, NodePartDesc::CtorAutoProcess, "text"),
    NodePartDesc(3, PartMask::bit(3), FieldPartType, SFFloatType, 0, "plain"),
    NodePartDesc(4, PartMask::bit(4), EventOutPartType, SFFloatType, 0, "fired"),
    NodePartDesc(5, PartMask::bit(5), EventInPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "trigger"),
    NodePartDesc(6, PartMask::bit(6), ExposedFieldPartType, SFAnyType, 0, "any"),
};
NodePartDesc worldParts[] = {
    NodePartDesc(0, PartMask::bit(0), FieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess, "level"),
};

// Root types of their own, without node fields: no route can hang nodes into each other.
struct Types {
    NodeTypeNameSpace* scope = NodeTypeNameSpace::create("fuzzroutes", &theBaseNodeTypeFactory());
    NodeType* sensor = new NodeType(*scope, "Sensor", "Fuzz", nullptr, nullptr, "1.0", "Fuzz", nullptr, "stable",
                                    nullptr, "Orvane", false, false, &Node::isNodeType, &Node::createNode,
                                    &Node::createProc, sensorParts, 7);
    NodeType* world = new NodeType(*scope, "World", "Fuzz", nullptr, nullptr, "1.0", "Fuzz", nullptr, "stable",
                                   nullptr, "Orvane", false, true, &Node::isNodeType, &Node::createNode,
                                   &Node::createProc, worldParts, 1);
    Types()
    {
        sensor->initType(false);
        world->initType(false);
    }
};

// Never destroyed.
Types& types()
{
    static Types& t = *new Types;
    return t;
}

std::vector<std::string> split(const std::string& line, char separator)
{
    std::vector<std::string> pieces;
    std::string::size_type pos = 0;
    while (true) {
        auto end = line.find(separator, pos);
        pieces.push_back(line.substr(pos, end == std::string::npos ? std::string::npos : end - pos));
        if (end == std::string::npos)
            return pieces;
        pos = end + 1;
    }
}

void run(const std::string& text)
{
    Types& t = types();
    SmartPtr<NodeNameSpace> scene(new NodeNameSpace("scene", nullptr, t.scope));
    SmartPtr<NodeNameSpace> inner(new NodeNameSpace("inner", scene.get()));
    std::vector<SmartPtr<Node>> nodes;
    for (const char* name : {"A", "B", (const char*)nullptr})
        nodes.emplace_back(t.sensor->createNode(scene.get(), name));
    nodes.emplace_back(t.sensor->createNode(inner.get(), "C"));
    for (SmartPtr<Node>& node : nodes)
        node->setNodeState(0.0, Live);
    inner->exportNode("C", "Pub");
    scene->importNode(*inner, "Pub", "Imp");
    const std::string unnamedID = nodes[2]->getIDStr();

    double time = 1.0;
    for (const std::string& line : split(text, '\n')) {
        if (line.empty())
            continue;
        std::vector<std::string> pieces = split(line.substr(1), '|');
        static const char* const nodeNames[] = {"A", "B", "C", "Imp", "Pub", "World", "inner::C", "scene::inner::C",
                                                " A ", "Sensor"};
        static const char* const fieldNames[] = {"value", "set_value", "value_changed", "count", "text",
                                                 "plain", "fired", "trigger", "any", "level"};
        for (std::size_t i = 0; i < pieces.size(); ++i) {
            std::string& piece = pieces[i];
            if (piece == "@")
                piece = unnamedID;
            else if (piece.size() == 1 && piece[0] >= '0' && piece[0] <= '9')
                piece = (i % 2 ? fieldNames : nodeNames)[piece[0] - '0'];
        }
        const char* name[4];
        for (std::size_t i = 0; i < 4; ++i)
            name[i] = i < pieces.size() ? pieces[i].c_str() : nullptr;
        const std::string first = name[0] ? name[0] : "";
        const std::string second = name[1] ? name[1] : "";
        NodeNameSpace& ns = (line[0] & 0x20) ? *scene : *inner;
        switch (line[0] | 0x20) {
        case 'c':
            if (Route* route = ns.createRoute(name[0], name[1], name[2], name[3]))
                route->outSlot().sendEvent(time += 1.0, false);
            break;
        case 'd':
            ns.deleteRoute(name[0], name[1], name[2], name[3]);
            break;
        case 'f':
            ns.findNode(first);
            break;
        case 'e':
            ns.exportNode(first, second);
            break;
        case 'r':
            ns.removeExportedNode(first);
            break;
        case 'i':
            ns.importNode(first, second, name[2] ? name[2] : "");
            break;
        case 't': {
            SFFloat value(*nodes[0]);
            value.setValue(2.5f);
            ns.transferEventToExport(time += 1.0, first, second, value);
            break;
        }
        case 's':
            if (Node* node = ns.findNode(first))
                if (Field* field = node->findField(second, SearchOutSlot))
                    if (EventOutSlot* slot = field->getOutSlot())
                        slot->sendEvent(time += 1.0, false);
            break;
        case 'n':
            ns.findNameSpace(first);
            break;
        case 'm':
            if (Node* node = ns.findNode(first))
                node->rename(second);
            break;
        default:
            break;
        }
    }
    // Either the nodes go first, or the namespaces do while the nodes are still held: then the
    // survivors move to the detached namespace and go with their last handle.
    if (text.size() % 2)
        nodes.clear();
    inner = nullptr;
    scene = nullptr;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Every message is formatted, none is written.
    Log::the().setLevel(LOG_DEBUG);
    Log::the().setDefaultSinkEnabled(false);
    const unsigned routesBefore = Route::routeCount();
    const std::size_t nodesBefore = Node::idMapSize();
    run(std::string(reinterpret_cast<const char*>(data), size));
    if (Route::routeCount() != routesBefore || Node::idMapSize() != nodesBefore)
        std::abort();
    return 0;
}

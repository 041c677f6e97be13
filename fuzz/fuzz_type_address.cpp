// Any text as a type address, from any of a few nested type namespaces, either case, and from
// the roots: never a crash, and a type found is one that the start namespace can see.
#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

using namespace Orvane;

namespace {

NodeType& declare(NodeTypeNameSpace& ns, const char* name)
{
    return *new NodeType(ns, name, "Fuzz", "Node", nullptr, "1.0", "Fuzz", nullptr, "stable", nullptr, "Orvane",
                         false, false, &Node::isNodeType, &Node::createNode, &Node::createProc, nullptr, 0);
}

// Never destroyed: a root "fuzzroot" with a, a::b and c below it, types in each, one name
// declared twice so that the inner one hides the outer one.
const std::vector<NodeTypeNameSpace*>& scopes()
{
    static const std::vector<NodeTypeNameSpace*> all = [] {
        NodeTypeNameSpace* root = NodeTypeNameSpace::create("fuzzroot", nullptr);
        NodeTypeNameSpace* a = NodeTypeNameSpace::create("a", root);
        NodeTypeNameSpace* b = NodeTypeNameSpace::create("b", a);
        NodeTypeNameSpace* c = NodeTypeNameSpace::create("c", root);
        declare(*root, "Shape");
        declare(*a, "Shape");
        declare(*a, "Box");
        declare(*b, "Ball");
        declare(*c, "Cone");
        declare(*c, "CONE");
        return std::vector<NodeTypeNameSpace*>{&theBaseNodeTypeFactory(), root, a, b, c};
    }();
    return all;
}

bool visible(const NodeTypeNameSpace* from, const NodeType& type)
{
    for (; from; from = from->parent())
        if (from == &type.nameSpace())
            return true;
    return false;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    Log::the().setLevel(LOG_LOG);
    Log::the().setDefaultSinkEnabled(false);
    const std::vector<NodeTypeNameSpace*>& all = scopes();
    const NodeTypeNameSpace* start = all[data[0] % all.size()];
    const SearchCaseType searchCase = (data[0] & 0x80) ? CaseInsensitive : CaseSensitive;
    const std::string address(reinterpret_cast<const char*>(data + 1), size - 1);

    NodeType* found = NodeTypeNameSpace::findType(start, address, searchCase);
    // A plain name (no scope, no number) only finds what the start namespace can see.
    const bool plain = address.find("::") == std::string::npos &&
                       address.find_first_of("0123456789") == std::string::npos;
    if (found && plain && !visible(start, *found))
        std::abort();
    NodeTypeNameSpace::findAbsolutType(address, searchCase);
    start->findNameSpace(address);
    NodeTypeNameSpace::findAbsolutNameSpace(address);
    return 0;
}

#ifndef ORVANE_TESTS_ACTIONKIT_H
#define ORVANE_TESTS_ACTIONKIT_H

#include "base/MFNode.h"
#include "base/SFFloat.h"
#include "base/SFNode.h"
#include "tests/support/TypeScope.h"

namespace Orvane::Test {

// Item: a value, one child and a list of children; Special derives from it. Field IDs 2 to 4
// follow the two every node inherits.
struct ActionKit {
    enum : unsigned { ValueId = 2, LinkId = 3, ChildrenId = 4 };

    TypeScope scope{"actions"};
    NodeType& item = scope.declare("Item", "Node",
                                   {{"value", ExposedFieldPartType, SFFloatType, NodePartDesc::CtorAutoProcess},
                                    {"link", ExposedFieldPartType, SFNodeType, NodePartDesc::CtorAutoProcess},
                                    {"children", ExposedFieldPartType, MFNodeType, NodePartDesc::CtorAutoProcess}});
    NodeType& special = scope.declare("Special", "Item", {}, 5);
    bool      ready = scope.initAll() == 0;

    SmartPtr<Node> make(const char* name = nullptr, const char* type = "Item") { return scope.make(type, name); }

    static MFNode& children(Node& node) { return *static_cast<MFNode*>(node.findField(ChildrenId)); }
    static SFNode& link(Node& node) { return *static_cast<SFNode*>(node.findField(LinkId)); }
    static SFFloat& value(Node& node) { return *static_cast<SFFloat*>(node.findField(ValueId)); }
};

} // namespace Orvane::Test

#endif

#ifndef ORVANE_TESTS_PROTOKIT_H
#define ORVANE_TESTS_PROTOKIT_H

#include "base/MFNode.h"
#include "base/NodeLink.h"
#include "base/ProtoDeclaration.h"
#include "base/ProtoInstance.h"
#include "base/ProtoLibrary.h"
#include "base/SFFloat.h"
#include "base/SFInt32.h"
#include "base/SFNode.h"
#include "tests/support/LogCapture.h"
#include "tests/support/TypeScope.h"

#include <gtest/gtest.h>

namespace Orvane::Test {

constexpr unsigned AP = NodePartDesc::CtorAutoProcess;

// Two native types for prototype bodies, and a scene to declare prototypes in. The scene goes
// before the types, and with it the prototypes it declared.
struct ProtoKit : ::testing::Test {
    TypeScope scope;
    NodeType& value = scope.declare("Value", "Node",
                                    {{"f", ExposedFieldPartType, SFFloatType, AP},
                                     {"in", EventInPartType, SFFloatType, AP},
                                     {"out", EventOutPartType, SFFloatType, AP},
                                     {"init", FieldPartType, SFFloatType, AP},
                                     {"count", ExposedFieldPartType, SFInt32Type, AP},
                                     {"child", ExposedFieldPartType, SFNodeType, AP}});
    NodeType& group = scope.declare("Group", "Node", {{"children", ExposedFieldPartType, MFNodeType, AP}});
    int       initFailures = scope.initAll();
    SmartPtr<NodeNameSpace> scene{new NodeNameSpace("scene", &scope.nodes())};

    // PROTO Box [ inputOnly SFFloat setIn, outputOnly SFFloat changed, inputOutput SFFloat both 1.5,
    //             initializeOnly SFInt32 size 7, initializeOnly SFNode extra Value {} ]
    // { DEF V Value { in IS setIn  out IS changed  f IS both  count IS size  child IS extra }
    //   DEF G Group {} }
    ProtoDeclaration* declareBox(NodeNameSpace& where, const char* name = "Box")
    {
        LogCapture quiet;
        ProtoDeclaration* box = ProtoDeclaration::declare(where, name);
        box->addField("inputOnly", "SFFloat", "setIn");
        box->addField("outputOnly", "SFFloat", "changed");
        box->addField("inputOutput", "SFFloat", "both", "1.5");
        box->addField("initializeOnly", "SFInt32", "size", "7");
        box->addField("initializeOnly", "SFNode", "extra");
        box->createBodyNode("Value", "V");
        box->createBodyNode("Group", "G");
        box->createBodyNode("Value", "X", box->field(4));
        box->addIsLink("setIn", "V", "in");
        box->addIsLink("changed", "V", "out");
        box->addIsLink("both", "V", "f");
        box->addIsLink("size", "V", "count");
        box->addIsLink("extra", "V", "child");
        return box;
    }

    // A node of `type` in `where`, held, and live unless told otherwise.
    static SmartPtr<Node> make(NodeNameSpace& where, const char* type, const char* name = nullptr, bool live = true)
    {
        SmartPtr<Node> node(NodeType::createNode(&where, type, name, RuntimeCreator));
        if (node && live)
            node->setNodeState(0.0, Live);
        return node;
    }
    static ProtoInstance& instance(const SmartPtr<Node>& node) { return *ProtoInstance::cast(node.get()); }
    // A body node of an instance by DEF name.
    static Node* body(const SmartPtr<Node>& node, const char* name)
    {
        return instance(node).bodyNameSpace()->findNode(name);
    }
    static float sf(Node& node, const char* field) { return static_cast<SFFloat*>(node.findField(field))->value(); }
    static int   si(Node& node, const char* field) { return static_cast<SFInt32*>(node.findField(field))->value(); }
    static Node* sn(Node& node, const char* field)
    {
        return static_cast<SFNode*>(node.findField(field))->link().directNode();
    }
    static void  setF(Node& node, const char* field, float v)
    {
        static_cast<SFFloat*>(node.findField(field))->setValue(1.0, v, Field::FieldCaller);
    }
};

} // namespace Orvane::Test

#endif

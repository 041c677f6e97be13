#ifndef ORVANE_TESTS_TESTNODES_H
#define ORVANE_TESTS_TESTNODES_H

#include "base/Field.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"
#include "base/SmartPtr.h"
#include "tests/support/LogCapture.h"

#include <memory>
#include <string>
#include <vector>

namespace Orvane::Test {

struct PartSpec {
    const char*      name;
    NodePartType     partType;
    NodePartDataType dataType;
    unsigned         flags = 0;
    const char*      defaultValue = nullptr;
    const char*      valueType = nullptr;
};

// A node type declared by a test: descriptor i has ID i and mask bit i. The type is a root type
// of its own (it does not inherit the base type's two fields), registered in a type namespace
// of its own so that tests may reuse names, with a node namespace of its own for its nodes.
class TestNodeType {
public:
    TestNodeType(const char* name, std::vector<PartSpec> parts)
        : _typeNameSpace(NodeTypeNameSpace::create(name, &theBaseNodeTypeFactory())),
          _nameSpace(new NodeNameSpace(name, nullptr, _typeNameSpace.get()))
    {
        _descs.reserve(parts.size());
        for (const PartSpec& p : parts) {
            unsigned id = static_cast<unsigned>(_descs.size());
            _descs.emplace_back(id, PartMask::bit(id), p.partType, p.dataType, p.flags, p.name, nullptr,
                                p.defaultValue, p.valueType);
        }
        _type = std::make_unique<NodeType>(*_typeNameSpace, name, "Test", nullptr, nullptr, "1.0", "Test", nullptr,
                                           "stable", nullptr, "Orvane", false, false, &Node::isNodeType,
                                           &Node::createNode, &Node::createProc, _descs.data(),
                                           static_cast<unsigned>(_descs.size()));
        // A root type of its own is not the root of the node type tree, which initType reports.
        LogCapture quiet;
        _type->initType();
    }

    NodeType&      type() { return *_type; }
    NodePartDesc&  desc(unsigned id) { return _descs[id]; }
    NodeNameSpace& nameSpace() { return *_nameSpace; }

    // A new node of the type, in Setup, with its fields made and held by the returned pointer.
    SmartPtr<Node> make(const char* name = nullptr) { return SmartPtr<Node>(_type->createNode(_nameSpace.get(), name)); }

private:
    std::unique_ptr<NodeTypeNameSpace> _typeNameSpace;
    SmartPtr<NodeNameSpace>            _nameSpace;
    std::vector<NodePartDesc>          _descs;
    std::unique_ptr<NodeType>          _type;
};

} // namespace Orvane::Test

#endif

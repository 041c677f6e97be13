#ifndef ORVANE_TESTS_TESTNODES_H
#define ORVANE_TESTS_TESTNODES_H

#include "base/Field.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"
#include "base/SmartPtr.h"

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

// A node type declared by a test: descriptor i has ID i and mask bit i.
class TestNodeType {
public:
    TestNodeType(const char* name, std::vector<PartSpec> parts)
    {
        _descs.reserve(parts.size());
        for (const PartSpec& p : parts) {
            unsigned id = static_cast<unsigned>(_descs.size());
            _descs.emplace_back(id, PartMask::bit(id), p.partType, p.dataType, p.flags, p.name, nullptr,
                                p.defaultValue, p.valueType);
        }
        _type = std::make_unique<NodeType>(name, _descs.data(), static_cast<unsigned>(_descs.size()));
    }

    NodeType&     type() { return *_type; }
    NodePartDesc& desc(unsigned id) { return _descs[id]; }

    // A new node of the type, held by the returned pointer.
    SmartPtr<Node> make() { return SmartPtr<Node>(new Node(*_type)); }

private:
    std::vector<NodePartDesc> _descs;
    std::unique_ptr<NodeType> _type;
};

} // namespace Orvane::Test

#endif

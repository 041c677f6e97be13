#ifndef ORVANE_BASE_NODETYPE_H
#define ORVANE_BASE_NODETYPE_H

#include "base/BaseObject.h"

#include <string>
#include <vector>

namespace Orvane {

class Node;
class NodePartDesc;
class ProtoDeclaration;

// One kind of scene-graph node: its name and the descriptors of its parts, in slot order.
class ORVANE_API NodeType : public BaseObject {
public:
    NodeType(const char* name, NodePartDesc* descs, unsigned count);
    ~NodeType() override = default;

    const std::string& name() const { return _name; }
    unsigned           partCount() const { return static_cast<unsigned>(_parts.size()); }
    NodePartDesc*      part(unsigned index) const { return _parts[index]; }
    ProtoDeclaration*  protoDeclaration() const { return _protoDeclaration; }
    bool               isProto() const { return _protoDeclaration != nullptr; }

private:
    std::string                _name;
    std::vector<NodePartDesc*> _parts;
    ProtoDeclaration*          _protoDeclaration = nullptr;
};

} // namespace Orvane

#endif

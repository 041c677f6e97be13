#ifndef ORVANE_BASE_NODEPART_H
#define ORVANE_BASE_NODEPART_H

#include "base/BaseObject.h"
#include "base/BitVector.h"
#include "base/FieldType.h"

#include <cstdint>
#include <string>

namespace Orvane {

class Node;
class NodePartDesc;

// Access type of a part: a bit set of the three roles. An exposed field N answers to "set_"+N
// and N+"_changed".
enum NodePartType : std::int32_t {
    InvalidPartType      = 0,
    FieldPartType        = 1,
    EventInPartType      = 2,
    EventOutPartType     = 4,
    ExposedFieldPartType = 7,
};

// Common base of the per-node part objects: fields and event slots.
class ORVANE_API NodePart : public BaseObject {
public:
    explicit NodePart(Node& owner) : _owner(&owner) {}
    NodePart(const NodePart& other) : BaseObject(), _owner(other._owner), _meta(descBits(other.desc())) {}
    NodePart& operator=(const NodePart&) = delete;
    ~NodePart() override = default;

    virtual const char*        findName() const;
    virtual NodePartDataType   dataType() const = 0;
    virtual const std::string& dataTypeName() const = 0;
    virtual NodePartType       type() const;

    Node&               owner() const { return *_owner; }
    NodePartDesc*       desc() const
    {
        return (_meta & ExtendedBit) ? reinterpret_cast<const Extension*>(_meta & ~ExtendedBit)->desc
                                     : reinterpret_cast<NodePartDesc*>(_meta);
    }
    void                setDesc(NodePartDesc* desc);
    // The part's bit in the node masks; the empty mask without descriptor.
    PartMask            mask() const;
    // The name, or "NoName" when the part has none: for log lines.
    const char*         nameOrNoName() const;

    // True when the part's descriptor is the one the owner's type holds at its ID.
    bool isNodeTypePart() const;

    static const PartMask _nullMask;

protected:
    // What a part gains once it has event slots or listeners. It takes over the descriptor, so
    // that a part without them holds both in one word.
    struct Extension {
        NodePartDesc* desc = nullptr;
    };
    Extension* extension() const
    {
        return (_meta & ExtendedBit) ? reinterpret_cast<Extension*>(_meta & ~ExtendedBit) : nullptr;
    }
    // Hands the part's descriptor to `extension`, which the part keeps from now on.
    void setExtension(Extension* extension);

    Node* _owner;

private:
    static constexpr std::uintptr_t ExtendedBit = 1;
    static std::uintptr_t descBits(NodePartDesc* desc) { return reinterpret_cast<std::uintptr_t>(desc); }

    // The descriptor, or the extension with the low bit set.
    std::uintptr_t _meta = 0;
};

} // namespace Orvane

#endif

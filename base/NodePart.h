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
// A part knows its owner and its descriptor in one word. A part in its owner's block finds the
// descriptor from its place there; any other part with a descriptor, and every part with event
// slots, keeps both in a record of its own.
class ORVANE_API NodePart : public BaseObject {
public:
    explicit NodePart(Node& owner) : _meta(&owner) {}
    NodePart(const NodePart& other);
    NodePart& operator=(const NodePart&) = delete;
    ~NodePart() override;

    virtual const char*        findName() const;
    virtual NodePartDataType   dataType() const = 0;
    virtual const std::string& dataTypeName() const = 0;
    virtual NodePartType       type() const;

    Node& owner() const
    {
        const Extension* e = extension();
        return e ? *e->owner : *static_cast<Node*>(_meta);
    }
    NodePartDesc* desc() const
    {
        const Extension* e = extension();
        return e ? e->desc : placedDesc();
    }
    void                setDesc(NodePartDesc* desc);
    PartMask            mask() const;
    const char*         nameOrNoName() const;

    bool isNodeTypePart() const;

    static const PartMask _nullMask;

protected:
    struct Extension {
        Extension() = default;
        Extension(const Extension&) = delete;
        Extension& operator=(const Extension&) = delete;
        virtual ~Extension() = default;
        Node*         owner = nullptr;
        NodePartDesc* desc = nullptr;
        // Set by the record that also holds event slots (see Field).
        bool          withEvents = false;
    };
    Extension* extension() const
    {
        return (reinterpret_cast<std::uintptr_t>(_meta) & 1u)
                   ? reinterpret_cast<Extension*>(static_cast<char*>(_meta) - 1)
                   : nullptr;
    }
    // Takes over owner and descriptor into `extension` and lets a former record go.
    void setExtension(Extension* extension);

private:
    // The descriptor of the owner's layout at this part's place; null for a part elsewhere.
    NodePartDesc* placedDesc() const;

    // The owner, or the record one byte on (its lowest bit set).
    void* _meta;
};

} // namespace Orvane

#endif

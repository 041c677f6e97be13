#ifndef ORVANE_BASE_NODEPARTDESC_H
#define ORVANE_BASE_NODEPARTDESC_H

#include "base/BaseObject.h"
#include "base/BitVector.h"
#include "base/FieldType.h"
#include "base/NodePart.h"

#include <cstdint>
#include <list>
#include <map>
#include <string>
#include <vector>

namespace Orvane {

class NodeType;

// Describes one member of a node type's interface: a field, an input event, an output event,
// or an exposed field.
class ORVANE_API NodePartDesc : public BaseObject {
public:
    // Bits of the flag word.
    enum Flag : std::uint32_t {
        ObjExtension  = 1u << 1,
        Derived       = 1u << 2,
        AutoProcess   = 1u << 3,
        PrivateAccess = 1u << 4,
        Deprecated    = 1u << 5,
        TypeExtension = 1u << 6,
        FurtherFlag   = 1u << 7,
    };
    // Bits of the constructor's flags argument; each sets one flag of the word.
    enum CtorFlag : unsigned {
        CtorAutoProcess = 1, CtorPrivateAccess = 2, CtorDeprecated = 4, CtorTypeExtension = 8,
        CtorFurther = 16,
    };

    NodePartDesc(unsigned id, PartMask mask, NodePartType partType, NodePartDataType dataType,
                 unsigned flags, const char* name, const char* group = nullptr,
                 const char* defaultValue = nullptr, const char* valueType = nullptr,
                 const char* description = nullptr, unsigned further = 0);
    ~NodePartDesc() override = default;

    unsigned           ID() const { return _ID; }
    PartMask           mask() const { return _mask; }
    NodePartType       partType() const { return _partType; }
    NodePartDataType   dataType() const { return _dataType; }
    const std::string& dataTypeName() const { return FieldType::dataTypeName(_dataType); }
    std::uint32_t      flags() const { return _flags; }
    bool               hasFlag(Flag flag) const { return (_flags & flag) != 0; }
    bool               autoProcess() const { return hasFlag(AutoProcess); }
    const std::string& name() const { return _fieldName; }
    const std::string& fieldName() const { return _fieldName; }
    const std::string& inSlotName() const { return _inSlotName; }
    const std::string& outSlotName() const { return _outSlotName; }
    const std::string& defaultValue() const { return _defaultValue; }
    const std::string& valueType() const { return _valueType; }
    const std::string& group() const { return _group; }
    const std::string& description() const { return _description; }
    unsigned           further() const { return _further; }
    NodeType*          ownerType() const { return _ownerType; }

    void init(NodeType& owner) { _ownerType = &owner; }

    static const char* partTypeName(NodePartType partType);
    const char*        partTypeName() const { return partTypeName(_partType); }

private:
    std::uint32_t    _flags = 0;
    unsigned         _ID;
    PartMask         _mask;
    NodePartType     _partType;
    NodePartDataType _dataType;
    std::string      _valueType;
    NodeType*        _ownerType = nullptr;
    std::string      _fieldName;
    std::string      _inSlotName;
    std::string      _outSlotName;
    std::string      _defaultValue;
    std::string      _group;
    std::string      _description;
    unsigned         _further;
};

} // namespace Orvane

#endif

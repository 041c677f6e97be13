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

// What the value type text of a descriptor restricts its values to.
enum NodePartValueRestriction : std::int32_t {
    InvalidRestriction  = 0,  // not yet parsed
    NoRestriction       = 1,
    CDataRestriction    = 2,  // character data
    NodeTypeRestriction = 3,  // node fields: the allowed node type
    RangeRestriction    = 4,  // numbers: minimum and maximum
    ListRestriction     = 5,  // strings: the allowed values
};

// Describes one member of a node type's interface: a field, an input event, an output event,
// or an exposed field.
class ORVANE_API NodePartDesc : public BaseObject {
public:
    // Bits of the flag word.
    enum Flag : std::uint32_t {
        ObjExtension  = 1u << 1,  // added to one node at run time
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
    // Which element valueListElem picks, relative to the current one.
    enum ListSelect : std::int32_t {
        NextElem = 0, PrevElem, NextElemWrap, PrevElemWrap, FirstElem, LastElem, RandomElem,
    };
    using IsLinkMap = std::map<std::string, std::vector<std::uint32_t>>;

    NodePartDesc(unsigned id, PartMask mask, NodePartType partType, NodePartDataType dataType,
                 unsigned flags, const char* name, const char* group = nullptr,
                 const char* defaultValue = nullptr, const char* valueType = nullptr,
                 const char* description = nullptr, unsigned further = 0);
    // A copy for a part added at run time; `mask`, when given, replaces the copied mask.
    NodePartDesc(const NodePartDesc& other, const PartMask* mask = nullptr);
    NodePartDesc& operator=(const NodePartDesc&) = delete;
    ~NodePartDesc() override = default;

    unsigned           ID() const { return _ID; }
    void               setID(unsigned id) { _ID = id; }
    PartMask           mask() const { return _mask; }
    void               setMask(PartMask mask) { _mask = mask; }
    NodePartType       partType() const { return _partType; }
    NodePartDataType   dataType() const { return _dataType; }
    const std::string& dataTypeName() const { return FieldType::dataTypeName(_dataType); }
    std::uint32_t      flags() const { return _flags; }
    bool               hasFlag(Flag flag) const { return (_flags & flag) != 0; }
    void               setFlag(Flag flag, bool on = true) { _flags = on ? _flags | flag : _flags & ~flag; }
    bool               autoProcess() const { return hasFlag(AutoProcess); }
    bool               privateAccess() const { return hasFlag(PrivateAccess); }
    bool               deprecated() const { return hasFlag(Deprecated); }
    bool               typeExtension() const { return hasFlag(TypeExtension); }
    bool               objExtension() const { return hasFlag(ObjExtension); }
    bool               derived() const { return hasFlag(Derived); }
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

    // Whether nodes of the type get a field for this part. Every data type number has a
    // registered field type; the check stays off the registry because it runs for every part
    // of every new node.
    bool holdsField() const
    {
        return _partType != InvalidPartType && _dataType >= SFBoolType && _dataType <= MFAnyType;
    }
    // Whether the part takes input events, sends output events.
    bool hasInSlot() const { return (_partType & EventInPartType) != 0; }
    bool hasOutSlot() const { return (_partType & EventOutPartType) != 0; }
    bool isNodeField() const { return _dataType == SFNodeType || _dataType == MFNodeType; }

    // Stores the owner and parses the value type text into its restriction.
    void init(NodeType& owner);

    NodePartValueRestriction      valueRestriction() const { return _valueRestriction; }
    double                        minValue() const { return _minValue; }
    double                        maxValue() const { return _maxValue; }
    const std::list<std::string>& valueList() const { return _valueList; }
    // The allowed node type of a node-type restriction, resolved on first need; null when the
    // restriction is another one or the type can not be found (yet).
    NodeType* nodeType() const;
    // A node-type restriction may name alternatives separated by '|' ("Coordinate|CoordinateDouble").
    // Whether a node of `type` may hang in this node field: always, unless a node-type restriction
    // resolves; then when the type is a kind of one of the allowed types (additional parents count).
    bool         acceptsNodeType(const NodeType& type) const;
    // The shortest kindDistance from `type` to an allowed type; -1 when none is, or none resolves.
    std::int32_t allowedTypeDistance(const NodeType& type) const;

    std::string valueListElem(const std::string& current, ListSelect select) const;

    void             addIsLink(const std::string& key, std::uint32_t partID);
    const IsLinkMap& isLinkMap() const { return _isLinkMap; }

    static const char* partTypeName(NodePartType partType);
    const char*        partTypeName() const { return partTypeName(_partType); }
    // The X3D access words: "initializeOnly", "inputOnly", "outputOnly", "inputOutput".
    static const char* accessTypeName(NodePartType partType);

    // "<owner type>.<name>", or the name alone before the descriptor belongs to a type.
    std::string& getIDStr(std::string& out) const;

    void dump() const;

protected:
    void updateNodeType() const;

private:
    std::uint32_t            _flags = 0;
    unsigned                 _ID;
    PartMask                 _mask;
    NodePartType             _partType;
    NodePartDataType         _dataType;
    std::string              _valueType;
    NodeType*                _ownerType = nullptr;
    NodePartValueRestriction _valueRestriction = InvalidRestriction;
    mutable NodeType*        _nodeType = nullptr;
    mutable std::vector<NodeType*> _nodeTypes;  // every resolved alternative, _nodeType first
    double                   _minValue = 0.0;
    double                   _maxValue = 0.0;
    std::list<std::string>   _valueList;
    std::string              _fieldName;
    std::string              _inSlotName;
    std::string              _outSlotName;
    std::string              _defaultValue;
    std::string              _group;
    std::string              _description;
    unsigned                 _further;
    IsLinkMap                _isLinkMap;
};

} // namespace Orvane

#endif

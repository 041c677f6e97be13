#include "base/NodePartDesc.h"

#include "base/Log.h"
#include "base/NodeType.h"
#include "base/NodeTypeNameSpace.h"

#include <cstdlib>
#include <cstring>
#include <strings.h>

namespace Orvane {

namespace {

std::string text(const char* t)
{
    return t ? std::string(t) : std::string();
}

std::vector<std::string> splitWords(const std::string& value)
{
    static const char* const separators = "[]() ;,";
    std::vector<std::string> words;
    std::string::size_type pos = 0;
    while (pos < value.size()) {
        auto start = value.find_first_not_of(separators, pos);
        if (start == std::string::npos)
            break;
        auto end = value.find_first_of(separators, start);
        if (end == std::string::npos)
            end = value.size();
        words.push_back(value.substr(start, end - start));
        pos = end;
    }
    return words;
}

const char* restrictionName(NodePartValueRestriction restriction)
{
    switch (restriction) {
    case NoRestriction:       return "none";
    case CDataRestriction:    return "cdata";
    case NodeTypeRestriction: return "nodeType";
    case RangeRestriction:    return "range";
    case ListRestriction:     return "list";
    default:                  return "unset";
    }
}

} // namespace

NodePartDesc::NodePartDesc(unsigned id, PartMask mask, NodePartType partType, NodePartDataType dataType,
                           unsigned flags, const char* name, const char* group, const char* defaultValue,
                           const char* valueType, const char* description, unsigned further)
    : _flags((flags & 0x1fu) << 3), _ID(id), _mask(mask), _partType(partType), _dataType(dataType),
      _valueType(text(valueType)), _defaultValue(text(defaultValue)), _group(text(group)),
      _description(text(description)), _further(further)
{
    if (!name)
        ORV_WARNING("Desc without name in NodePartDesc Const\n");
    std::string n = text(name);
    switch (partType) {
    case FieldPartType:
        _fieldName = n;
        break;
    case EventInPartType:
        _fieldName = n;
        _inSlotName = n;
        break;
    case EventOutPartType:
        _fieldName = n;
        _outSlotName = n;
        break;
    case ExposedFieldPartType:
        _fieldName = n;
        _inSlotName = "set_" + n;
        _outSlotName = n + "_changed";
        break;
    default:
        ORV_WARNING("Unknown NodePartType in NodePartDesc Const.: %d\n", static_cast<int>(partType));
        break;
    }
}

NodePartDesc::NodePartDesc(const NodePartDesc& other, const PartMask* mask)
    : BaseObject(), _flags(other._flags), _ID(other._ID), _mask(mask ? *mask : other._mask),
      _partType(other._partType), _dataType(other._dataType), _valueType(other._valueType),
      _ownerType(other._ownerType), _valueRestriction(other._valueRestriction), _nodeType(other._nodeType), _nodeTypes(other._nodeTypes),
      _minValue(other._minValue), _maxValue(other._maxValue), _valueList(other._valueList),
      _fieldName(other._fieldName), _inSlotName(other._inSlotName), _outSlotName(other._outSlotName),
      _defaultValue(other._defaultValue), _group(other._group), _description(other._description),
      _further(other._further), _isLinkMap(other._isLinkMap)
{
}

namespace {

// The classic and the X3D word of each access type.
const char* accessWord(NodePartType partType, bool x3d)
{
    static const struct {
        NodePartType type;
        const char*  classic;
        const char*  x3d;
    } words[] = {{FieldPartType, "field", "initializeOnly"},
                 {EventInPartType, "eventIn", "inputOnly"},
                 {EventOutPartType, "eventOut", "outputOnly"},
                 {ExposedFieldPartType, "exposedField", "inputOutput"}};
    for (const auto& word : words)
        if (word.type == partType)
            return x3d ? word.x3d : word.classic;
    ORV_WARNING("Invalid partType %d, cannot find name entry\n", static_cast<int>(partType));
    return "Invalid Part Type";
}

} // namespace

const char* NodePartDesc::partTypeName(NodePartType partType)
{
    return accessWord(partType, false);
}

const char* NodePartDesc::accessTypeName(NodePartType partType)
{
    return accessWord(partType, true);
}

void NodePartDesc::init(NodeType& owner)
{
    _ownerType = &owner;
    _valueRestriction = NoRestriction;
    _nodeType = nullptr;
    _nodeTypes.clear();
    _valueList.clear();
    if (_valueType.empty())
        return;
    std::vector<std::string> words = splitWords(_valueType);
    if (words.empty())
        return;
    if (words.size() == 1 && words[0] == "cdata") {
        _valueRestriction = CDataRestriction;
        return;
    }
    switch (_dataType) {
    case SFNodeType:
    case MFNodeType:
        if (words.size() > 1) {
            ORV_WARNING("%s.%s: Only one value allowed in _valueType\n", _fieldName.c_str(), owner.name().c_str());
            return;
        }
        _valueRestriction = NodeTypeRestriction;
        _valueType = words[0];
        break;
    case SFDoubleType:
    case MFDoubleType:
    case SFFloatType:
    case MFFloatType:
    case SFInt32Type:
    case MFInt32Type:
        if (words.size() != 2) {
            ORV_WARNING("%s.%s: Need two min;max values in _valueType\n", _fieldName.c_str(), owner.name().c_str());
            return;
        }
        _valueRestriction = RangeRestriction;
        _minValue = std::strtod(words[0].c_str(), nullptr);
        _maxValue = std::strtod(words[1].c_str(), nullptr);
        break;
    case SFStringType:
    case MFStringType:
        if (words.size() >= 2) {
            _valueRestriction = ListRestriction;
            _valueList.assign(words.begin(), words.end());
        }
        break;
    default:
        break;
    }
}

// Resolved late: the restricted type may be registered after the type that names it.
void NodePartDesc::updateNodeType() const
{
    if (!_ownerType) {
        ORV_FATAL("No valid _refType, cannot update nodeType: %s\n", _valueType.c_str());
        return;
    }
    _nodeTypes.clear();
    std::string::size_type pos = 0;
    while (pos <= _valueType.size()) {
        auto end = _valueType.find('|', pos);
        if (end == std::string::npos)
            end = _valueType.size();
        if (end > pos) {
            std::string name = _valueType.substr(pos, end - pos);
            if (NodeType* type = NodeTypeNameSpace::findType(&_ownerType->nameSpace(), name, CaseSensitive))
                _nodeTypes.push_back(type);
            else
                ORV_FATAL("Cannot find %s for %s ref\n", name.c_str(), _ownerType->name().c_str());
        }
        pos = end + 1;
    }
    _nodeType = _nodeTypes.empty() ? nullptr : _nodeTypes.front();
}

NodeType* NodePartDesc::nodeType() const
{
    if (_valueRestriction != NodeTypeRestriction)
        return nullptr;
    if (!_nodeType)
        updateNodeType();
    return _nodeType;
}

bool NodePartDesc::acceptsNodeType(const NodeType& type) const
{
    if (!nodeType())
        return true;
    for (const NodeType* allowed : _nodeTypes)
        if (type.isKindOf(*allowed))
            return true;
    return false;
}

std::int32_t NodePartDesc::allowedTypeDistance(const NodeType& type) const
{
    std::int32_t best = -1;
    if (nodeType())
        for (const NodeType* allowed : _nodeTypes) {
            std::int32_t distance = type.kindDistance(*allowed);
            if (distance >= 0 && (best < 0 || distance < best))
                best = distance;
        }
    return best;
}

std::string NodePartDesc::valueListElem(const std::string& current, ListSelect select) const
{
    if (_valueRestriction != ListRestriction) {
        ORV_WARNING("%s is not a list (%s)\n", _fieldName.c_str(), _valueType.c_str());
        return current;
    }
    if (_valueList.empty()) {
        ORV_WARNING("%s holds empty list\n", _fieldName.c_str());
        return current;
    }
    if (select == FirstElem)
        return _valueList.front();
    if (select == LastElem)
        return _valueList.back();
    if (select == RandomElem) {
        std::size_t index = static_cast<std::size_t>(std::rand() % 32768) * _valueList.size() / 32768;
        return *std::next(_valueList.begin(), static_cast<std::ptrdiff_t>(index));
    }
    // The current text matches every element that it is a prefix of: "li" selects "Linear".
    auto found = _valueList.begin();
    for (; found != _valueList.end(); ++found) {
        if (found->size() >= current.size() && strncasecmp(found->c_str(), current.c_str(), current.size()) == 0)
            break;
    }
    if (found == _valueList.end()) {
        ORV_WARNING("%s(%s) Invalid CurrentElem: %s; can not select\n", _fieldName.c_str(), _valueType.c_str(),
                    current.c_str());
        return current;
    }
    auto last = std::prev(_valueList.end());
    switch (select) {
    case NextElem:
        return found == last ? *found : *std::next(found);
    case PrevElem:
        return found == _valueList.begin() ? *found : *std::prev(found);
    case NextElemWrap:
        return found == last ? _valueList.front() : *std::next(found);
    case PrevElemWrap:
        return found == _valueList.begin() ? _valueList.back() : *std::prev(found);
    default:
        return *found;
    }
}

void NodePartDesc::addIsLink(const std::string& key, std::uint32_t partID)
{
    _isLinkMap[key].push_back(partID);
}

std::string& NodePartDesc::getIDStr(std::string& out) const
{
    out.clear();
    if (_ownerType)
        out = _ownerType->name() + ".";
    out += _fieldName;
    return out;
}

void NodePartDesc::dump() const
{
    auto yesNo = [](bool on) { return on ? "true" : "false"; };
    ORV_PLOG("NodePartDesc:       %s\n", _fieldName.c_str());
    ORV_PLOG("  ID:               %u\n", _ID);
    ORV_PLOG("  Mask value:       %llu\n", _mask.value());
    ORV_PLOG("  partType:         %s\n", partTypeName());
    ORV_PLOG("  dataType:         %s\n", dataTypeName().c_str());
    ORV_PLOG("  valueType:        %s\n", _valueType.c_str());
    ORV_PLOG("  valueRestriction: %s\n", restrictionName(_valueRestriction));
    ORV_PLOG("  name:             %s\n", _fieldName.c_str());
    ORV_PLOG("  group:             %s\n", _group.c_str());
    ORV_PLOG("  fieldName:        %s\n", _fieldName.c_str());
    ORV_PLOG("  inSlotName:       %s\n", _inSlotName.c_str());
    ORV_PLOG("  outSlotName:      %s\n", _outSlotName.c_str());
    ORV_PLOG("  defaultValue:     %s\n", _defaultValue.c_str());
    ORV_PLOG("  autoProcess:      %s\n", yesNo(autoProcess()));
    ORV_PLOG("  privateAccess:    %s\n", yesNo(privateAccess()));
    ORV_PLOG("  objExtension:     %s\n", yesNo(objExtension()));
    ORV_PLOG("  typeExtension:    %s\n", yesNo(typeExtension()));
    ORV_PLOG("  deprecated:       %s\n", yesNo(deprecated()));
    ORV_PLOG("  derived:          %s\n", yesNo(derived()));
    ORV_PLOG("  description:      %s\n", _description.c_str());
    ORV_PLOG("  isLinkMap size:   %zu\n", _isLinkMap.size());
}

} // namespace Orvane

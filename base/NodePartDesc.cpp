#include "base/NodePartDesc.h"

#include "base/Log.h"

namespace Orvane {

namespace {

std::string text(const char* t)
{
    return t ? std::string(t) : std::string();
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

const char* NodePartDesc::partTypeName(NodePartType partType)
{
    switch (partType) {
    case FieldPartType:        return "field";
    case EventInPartType:      return "eventIn";
    case EventOutPartType:     return "eventOut";
    case ExposedFieldPartType: return "exposedField";
    default: break;
    }
    ORV_WARNING("Invalid partType %d, cannot find name entry\n", static_cast<int>(partType));
    return "Invalid Part Type";
}

} // namespace Orvane

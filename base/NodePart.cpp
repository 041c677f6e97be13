#include "base/NodePart.h"

#include "base/Log.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"

namespace Orvane {

const PartMask NodePart::_nullMask;

const char* NodePart::findName() const
{
    if (!_desc) {
        ORV_WARNING("Field without desc cannot return name\n");
        return nullptr;
    }
    return _desc->name().c_str();
}

NodePartType NodePart::type() const
{
    return _desc ? _desc->partType() : FieldPartType;
}

PartMask NodePart::mask() const
{
    return _desc ? _desc->mask() : _nullMask;
}

const char* NodePart::nameOrNoName() const
{
    return _desc ? _desc->name().c_str() : "NoName";
}

bool NodePart::isNodeTypePart() const
{
    if (!_desc)
        return false;
    const NodeType& type = _owner->type();
    return _desc->ID() < type.partCount() && type.part(_desc->ID()) == _desc;
}

} // namespace Orvane

#include "base/NodePart.h"

#include "base/Log.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"

namespace Orvane {

const PartMask NodePart::_nullMask;

void NodePart::setDesc(NodePartDesc* desc)
{
    if (Extension* e = extension())
        e->desc = desc;
    else
        _meta = descBits(desc);
}

void NodePart::setExtension(Extension* extension)
{
    extension->desc = desc();
    _meta = reinterpret_cast<std::uintptr_t>(extension) | ExtendedBit;
}

const char* NodePart::findName() const
{
    const NodePartDesc* d = desc();
    if (!d) {
        ORV_WARNING("Field without desc cannot return name\n");
        return nullptr;
    }
    return d->name().c_str();
}

NodePartType NodePart::type() const
{
    const NodePartDesc* d = desc();
    return d ? d->partType() : FieldPartType;
}

PartMask NodePart::mask() const
{
    const NodePartDesc* d = desc();
    return d ? d->mask() : _nullMask;
}

const char* NodePart::nameOrNoName() const
{
    const NodePartDesc* d = desc();
    return d ? d->name().c_str() : "NoName";
}

bool NodePart::isNodeTypePart() const
{
    const NodePartDesc* d = desc();
    if (!d)
        return false;
    const NodeType& type = _owner->type();
    return d->ID() < type.partCount() && type.part(d->ID()) == d;
}

} // namespace Orvane

#include "base/NodePart.h"

#include "base/Log.h"
#include "base/Node.h"
#include "base/NodePartDesc.h"
#include "base/NodeType.h"

namespace Orvane {

const PartMask NodePart::_nullMask;

NodePart::NodePart(const NodePart& other) : BaseObject(), _meta(&other.owner())
{
    setDesc(other.desc());
}

NodePart::~NodePart()
{
    delete extension();
}

NodePartDesc* NodePart::placedDesc() const
{
    return static_cast<const Node*>(_meta)->_parts.descAt(this);
}

void NodePart::setDesc(NodePartDesc* desc)
{
    if (Extension* e = extension()) {
        e->desc = desc;
        return;
    }
    if (desc == placedDesc())
        return;
    setExtension(new Extension);
    extension()->desc = desc;
}

void NodePart::setExtension(Extension* extension)
{
    Extension* former = this->extension();
    extension->owner = &owner();
    extension->desc = desc();
    _meta = reinterpret_cast<char*>(extension) + 1;
    delete former;
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
    const NodeType& type = owner().type();
    return d->ID() < type.partCount() && type.part(d->ID()) == d;
}

} // namespace Orvane

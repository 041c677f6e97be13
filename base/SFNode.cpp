#include "base/SFNode.h"

#include "base/Node.h"

namespace Orvane {

SFNode::SFNode(Node& owner) : TypedField(owner)
{
    _value.setField(this);
}

SFNode::SFNode(Node& owner, const SFNode& other) : TypedField(owner)
{
    _value.setField(this);
    _value.setNode(other.node());
}

SFNode::SFNode(const SFNode& other) : TypedField(other.owner())
{
    setDesc(other.desc());
    _value.setField(this);
    _value.setNode(other.node());
}

SFNode& SFNode::operator=(const SFNode& other)
{
    _value.setNode(other.node());
    return *this;
}

Field* SFNode::create(Node& owner)
{
    return new SFNode(owner);
}

std::string& SFNode::getStrValue(std::string& out) const
{
    out.clear();
    if (Node* child = node())
        out = child->getIDStr();
    return out;
}

void SFNode::setValueByStr(const char* text)
{
    ORV_WARNING("SFNode::setValueByStr( %s ) is not impl.\n", text ? text : "");
}

bool SFNode::setValueByField(const Field& from, ConvertParam* param)
{
    if (auto* same = dynamic_cast<const SFNode*>(&from)) {
        if (same != this)
            return _value.setNode(same->_value.directNode());
        return true;
    }
    return Field::setValueByField(from, param);
}

// Node values have no binary form.

} // namespace Orvane

#include "base/MFNode.h"

#include "base/Node.h"
#include "base/NodeType.h"

namespace Orvane {

MFNode::MFNode(Node& owner, const MFNode& other) : TypedField(owner)
{
    *this = other;
}

MFNode::MFNode(const MFNode& other) : TypedField(other.owner())
{
    _desc = other._desc;
    *this = other;
}

MFNode& MFNode::operator=(const MFNode& other)
{
    if (this == &other)
        return *this;
    _value.clear();
    for (const NodeLink& link : other._value)
        addChild(link.node());
    return *this;
}

Field* MFNode::create(Node& owner)
{
    return new MFNode(owner);
}

NodeLink* MFNode::addChild(Node* node)
{
    return insertChild(-1, node);
}

NodeLink* MFNode::insertChild(int index, Node* node)
{
    if (!node) {
        ORV_WARNING("Add Child(NULL) to Node(%s/%s), field: %s\n", owner().type().name().c_str(),
                    owner().getIDStr().c_str(), nameOrNoName());
        return nullptr;
    }
    NodeLink* link = insertValue(index, NodeLink());
    link->setField(this);
    link->setNode(node);
    return link;
}

std::string& MFNode::getStrValue(std::string& out) const
{
    out.clear();
    for (const NodeLink& link : _value) {
        if (!out.empty())
            out += ' ';
        out += link.node() ? link.node()->getIDStr() : std::string("NULL");
    }
    return out;
}

const char* MFNode::addValueByStr(const char*, Cardinality)
{
    ORV_WARNING("In MFNode::setValueByStr\n");
    return nullptr;
}

void MFNode::setValueByStr(const char*)
{
    ORV_WARNING("In MFNode::setValueByStr\n");
}

} // namespace Orvane

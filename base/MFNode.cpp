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
    setDesc(other.desc());
    *this = other;
}

MFNode::~MFNode()
{
    // The links let their children go without notifications: the owner is going away.
    _value.clear();
}

MFNode& MFNode::operator=(const MFNode& other)
{
    if (this == &other)
        return *this;
    clear();
    for (const NodeLink& link : other._value)
        placeLink(-1, link.directNode());
    return *this;
}

Field* MFNode::create(Node& owner)
{
    return new MFNode(owner);
}

NodeLink* MFNode::placeLink(int index, Node* node)
{
    iterator at = index < 0 || index >= static_cast<int>(_value.size()) ? _value.end() : this->at(index);
    iterator placed = _value.emplace(at);
    placed->setField(this);
    if (!placed->setNode(node)) {
        _value.erase(placed);
        return nullptr;
    }
    return &*placed;
}

void MFNode::eraseLink(iterator it)
{
    it->setNode(nullptr);
    _value.erase(it);
}

NodeLink* MFNode::addChild(Node* node)
{
    return insertChild(-1, node);
}

NodeLink* MFNode::insertChild(int index, Node* node)
{
    if (!node) {
        ORV_WARNING("Add Child(NULL) to Node(%s/%s), field: %s\n", owner().type().name().c_str(),
                    owner().hasName() ? owner().name().c_str() : "NoName", nameOrNoName());
        return nullptr;
    }
    return placeLink(index, node);
}

bool MFNode::removeLink(NodeLink* link)
{
    for (iterator it = _value.begin(); it != _value.end(); ++it) {
        if (&*it == link) {
            eraseLink(it);
            return true;
        }
    }
    return false;
}

void MFNode::removeValueByIndex(int index)
{
    if (index >= 0 && index < static_cast<int>(_value.size()))
        eraseLink(at(index));
}

void MFNode::removeValue(const NodeLink& value)
{
    Node* node = value.directNode();
    for (iterator it = _value.begin(); it != _value.end();) {
        iterator next = std::next(it);
        if (it->directNode() == node && &*it != &value)
            eraseLink(it);
        it = next;
    }
    if (value.getField() == this)
        removeLink(const_cast<NodeLink*>(&value));
}

void MFNode::clear()
{
    // Front to back, each link cleared before it goes, so every child hears of it.
    while (!_value.empty())
        eraseLink(_value.begin());
}

void MFNode::free()
{
    clear();
}

void MFNode::resize(unsigned int count)
{
    while (_value.size() > count)
        eraseLink(std::prev(_value.end()));
    while (_value.size() < count)
        placeLink(-1, nullptr);
}

bool MFNode::setValueByField(const Field& from, ConvertParam* param)
{
    if (auto* same = dynamic_cast<const MFNode*>(&from)) {
        if (same != this)
            *this = *same;
        return true;
    }
    return Field::setValueByField(from, param);
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

// Node values have no binary form.

} // namespace Orvane

#include "base/NodeLink.h"

#include "base/Field.h"
#include "base/Node.h"

namespace Orvane {

NodeLink::NodeLink() = default;

NodeLink::NodeLink(const NodeLink& other)
{
    setNode(other.directNode());
}

NodeLink& NodeLink::operator=(const NodeLink& other)
{
    if (this != &other)
        setNode(other.directNode());
    return *this;
}

NodeLink::~NodeLink()
{
    // The parent is going away: no change to report.
    detachChild();
}

Node* NodeLink::parent() const
{
    return _field ? &_field->owner() : nullptr;
}

void NodeLink::detachChild()
{
    if (!_node)
        return;
    _node->removeParentLink(this);
    _node = nullptr;
}

bool NodeLink::setNode(const Node* node)
{
    if (node == _node.get())
        return true;
    detachChild();
    if (node) {
        Node* child = const_cast<Node*>(node);
        _node = child;
        child->addParentLink(this);
    }
    if (Node* owner = parent()) {
        owner->setFlag(Node::ChildChangedFlag);
        owner->markParent(1);
    }
    return true;
}

void NodeLink::swap(NodeLink& other)
{
    Node* mine = _node.get();
    Node* theirs = other._node.get();
    if (mine == theirs)
        return;
    SmartPtr<Node> keepMine(mine), keepTheirs(theirs);
    setNode(theirs);
    other.setNode(mine);
}

} // namespace Orvane

#ifndef ORVANE_BASE_NODELINK_H
#define ORVANE_BASE_NODELINK_H

#include "base/OrvaneExport.h"
#include "base/SmartPtr.h"

namespace Orvane {

class Field;
class Node;

// One parent-to-child edge: it belongs to a node-valued field of the parent and holds a
// counted reference to the child, which keeps the link in its list of parent links.
class ORVANE_API NodeLink {
public:
    NodeLink();
    // A copy holds the same child; the field that stores it names itself as owner.
    NodeLink(const NodeLink& other);
    NodeLink& operator=(const NodeLink& other);
    ~NodeLink();

    bool  setNode(const Node* node);
    Node* directNode() const { return _node.get(); }
    Node* node() const { return _node.get(); }

    Field* getField() const { return _field; }
    void   setField(Field* field) { _field = field; }
    Node*  parent() const;

    void swap(NodeLink& other);

    bool operator==(const NodeLink& other) const { return _node == other._node; }

private:
    void detachChild();

    SmartPtr<Node> _node;
    Field*         _field = nullptr;
};

} // namespace Orvane

#endif

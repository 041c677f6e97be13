#ifndef ORVANE_BASE_NODELINK_H
#define ORVANE_BASE_NODELINK_H

#include "base/BaseObject.h"
#include "base/BitVector.h"
#include "base/SmartPtr.h"

namespace Orvane {

class Field;
class Node;
class NodeType;
class Subject;

// One parent-to-child edge: it belongs to a node-valued field of the parent and holds a
// counted reference to the child, which keeps the link in its list of parent links. Setting a
// link is the one place where child and parent are told of each other.
class ORVANE_API NodeLink : public BaseObject {
public:
    NodeLink();
    // A copy is an empty link without field: a link belongs to one field, which places it and
    // then sets the child.
    NodeLink(const NodeLink& other);
    // Assignment takes the other link's child; the field stays.
    NodeLink& operator=(const NodeLink& other);
    // The owning field is going away: the child is let go without notifications.
    ~NodeLink() override;

    bool  setNode(const Node* node);
    // The child as seen through prototype instances.
    Node* node() const;
    Node* directNode() const { return _node.get(); }
    // The owner node of the field, null without field.
    Node*     parent() const;
    NodeType* nodeType() const;

    Field*   getField() const { return _field; }
    void     setField(Field* field) { _field = field; }
    // The descriptor ID of the field; ~0u without field or descriptor.
    unsigned getFieldID() const;
    PartMask getFieldMask() const;

    void swap(NodeLink& other);

    bool operator==(const NodeLink& other) const { return _node == other._node; }

    static Subject& newLinkSubject();
    static Subject& deleteLinkSubject();

    static const PartMask _nullMask;

private:
    void markParent() const;

    SmartPtr<Node> _node;
    Field*         _field = nullptr;
};

} // namespace Orvane

#endif

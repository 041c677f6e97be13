#ifndef ORVANE_BASE_NODENAMESPACE_H
#define ORVANE_BASE_NODENAMESPACE_H

#include "base/RefCountObject.h"

#include <map>
#include <string>
#include <vector>

namespace Orvane {

class Node;
class NodeType;
class NodeTypeNameSpace;
class Subject;

// The scope in which nodes carry DEF names: one scene, inline or prototype body has one, and
// scopes nest through a parent. Each is tied to the type namespace in which its node types are
// looked up. Unnamed nodes are found by their ID text ("#" and the node number) as well.
class ORVANE_API NodeNameSpace : public RefCountObject {
public:
    // Without type namespace the parent's is used, and at the top the base one.
    NodeNameSpace(const char* name, NodeNameSpace* parent = nullptr, NodeTypeNameSpace* typeNameSpace = nullptr);

    NodeNameSpace(const NodeNameSpace&) = delete;
    NodeNameSpace& operator=(const NodeNameSpace&) = delete;

    const std::string& name() const { return _name; }
    NodeNameSpace*     parent() const { return _parent; }
    bool               setParent(NodeNameSpace* parent);
    NodeTypeNameSpace& nodeTypeNameSpace() const { return *_typeNameSpace; }
    Node*              root() const { return _root; }
    bool               setRoot(Node& root);
    // The nodes that live in this namespace, named or not.
    int                nodeCount() const { return _nodeCount; }

    // DEF names. An empty name registers nothing; a second node under a taken name takes it over.
    bool  regNode(Node& node, NodeType& type, const std::string& name, bool autoNamed = false);
    void  unregNode(Node& node);
    Node* findNode(const std::string& name) const;
    bool  isAutoNamed(const Node& node) const;
    bool  fillAbsolutAddress(std::string& out) const;

    static Subject& newObjectSubject();
    static Subject& deleteObjectSubject();

protected:
    ~NodeNameSpace() override;

private:
    friend class Node;

    struct Entry {
        Node* node;
        bool  autoNamed;
    };

    std::string                 _name;
    NodeNameSpace*              _parent = nullptr;
    std::vector<NodeNameSpace*> _children;
    NodeTypeNameSpace*          _typeNameSpace;
    Node*                       _root = nullptr;
    std::map<std::string, Entry> _defMap;
    int                         _nodeCount = 0;
};

} // namespace Orvane

#endif

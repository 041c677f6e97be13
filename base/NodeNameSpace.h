#ifndef ORVANE_BASE_NODENAMESPACE_H
#define ORVANE_BASE_NODENAMESPACE_H

#include "base/RefCountObject.h"

#include <map>
#include <string>
#include <vector>

namespace Orvane {

class Context;
class EventOutSlot;
class Field;
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

    // The context that runs this namespace's scene: the one bound to it (a context binds the
    // namespaces of its roots), else its parent's; null when none.
    Context* context() const;
    void     setContext(Context* context);

    // Bits telling what kind of live content the scope holds; routes of data flow set bit 2.
    void     markDynamicContent(unsigned bit) { _dynamicContent |= bit; }
    unsigned dynamicContent() const { return _dynamicContent; }

    // Namespaces that import nodes exported by this one; IMPORT registers them.
    void addImporter(NodeNameSpace& importer);
    void removeImporter(NodeNameSpace& importer);
    const std::vector<NodeNameSpace*>& importers() const { return _importers; }
    // Passes an event of an exported node of this namespace to every importing namespace, whose
    // import-event subject tells its observers (time, value field, out-slot). Returns the number
    // of importers reached.
    unsigned transferEventFromExport(const double& time, Field& value, EventOutSlot& slot);
    // Told of the events of nodes that this namespace imports; made on first use.
    Subject& importEventSubject();

    static Subject& newObjectSubject();
    static Subject& deleteObjectSubject();

protected:
    ~NodeNameSpace() override;

private:
    friend class Context;
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
    Context*                    _context = nullptr;
    unsigned                    _dynamicContent = 0;
    std::vector<NodeNameSpace*> _importers;
    std::vector<NodeNameSpace*> _importsFrom;  // the other side of _importers
    Subject*                    _importEventSubject = nullptr;
};

} // namespace Orvane

#endif

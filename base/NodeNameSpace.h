#ifndef ORVANE_BASE_NODENAMESPACE_H
#define ORVANE_BASE_NODENAMESPACE_H

#include "base/RefCountObject.h"
#include "base/SmartPtr.h"

#include <map>
#include <string>
#include <vector>

namespace Orvane {

class Component;
class Context;
class EventOutSlot;
class Field;
class Node;
class NodeType;
class NodeTypeNameSpace;
class Route;
class Subject;

// The scope in which nodes carry DEF names: one scene, inline or prototype body has one, and
// scopes nest through a parent. Each is tied to the type namespace in which its node types are
// looked up. Unnamed nodes are found by their ID text ("#" and the node number) as well.
//
// Ownership: a namespace is reference counted and held by whoever made the scene (a context
// root node holds its own namespace). It knows every node that lives in it, named or not, but
// holds none of them. When it goes, it cuts its nodes out of their parents, so that the nodes
// nobody else holds die with their routes; nodes still held elsewhere move to the detached
// namespace without their DEF names, so that no node ever points at a dead scope.
class ORVANE_API NodeNameSpace : public RefCountObject {
public:
    // EXPORT: a node of this namespace published under a name for importing namespaces.
    struct Export {
        Node*       node;
        std::string name;
    };
    // IMPORT: a node exported by another namespace, known here under a local name. The
    // exporting namespace is null once it went away.
    struct Import {
        NodeNameSpace* from;
        std::string    exportName;
        std::string    localName;
    };
    // One META entry of the scene's head.
    struct MetaData {
        std::string name;
        std::string content;
    };

    // Without name the namespace gets a generated one ("AN_NS_" and a number). Without type
    // namespace it uses its parent's, in which one of its own is made once something needs it,
    // and at the top the base one.
    NodeNameSpace(const char* name, NodeNameSpace* parent = nullptr, NodeTypeNameSpace* typeNameSpace = nullptr);

    NodeNameSpace(const NodeNameSpace&) = delete;
    NodeNameSpace& operator=(const NodeNameSpace&) = delete;

    const std::string& name() const { return _name; }
    bool               isAutoNamed() const { return _autoNamed; }
    NodeNameSpace*     parent() const { return _parent; }
    // Refuses to make this namespace its own ancestor.
    bool               setParent(NodeNameSpace* parent);
    NodeTypeNameSpace& nodeTypeNameSpace() const;
    // The type namespace in which this scene declares its prototypes: its own, made on first
    // need, whenever it would otherwise be the base namespace of the native types.
    NodeTypeNameSpace& protoTypeNameSpace();
    Node*              root() const { return _root; }
    // Set once; cleared when the root node goes.
    bool               setRoot(Node& root);
    // The nodes that live in this namespace, named or not.
    int                nodeCount() const { return _nodeCount; }
    // Those nodes in the order they came; with `namedOnly` only the DEF'd ones.
    int                fillNodeVec(std::vector<Node*>& out, bool namedOnly = false) const;

    // DEF names. An empty name registers nothing; a second node under a taken name takes it over.
    bool  regNode(Node& node, NodeType& type, const std::string& name, bool autoNamed = false);
    void  unregNode(Node& node);
    // Gives an unnamed node of this namespace a generated DEF name ("AN_" and its number), so
    // that it can be referred to; returns the node's name, empty for a node of another namespace.
    const std::string& updateNamedNode(Node& node);
    // A DEF name, an import's local name, a name in a using namespace, or an ID text ("#42");
    // blanks around the name are ignored. "a::b::Name" selects a DEF name of a nested
    // namespace; that form is deprecated.
    Node* findNode(const std::string& name) const;
    bool  isAutoNamed(const Node& node) const;
    bool  fillAbsolutAddress(std::string& out) const;

    // "a::b": a child namespace of this one or of an enclosing one, or the outermost namespace
    // itself, then its children.
    NodeNameSpace* findNameSpace(const std::string& address) const;
    // The child namespaces, with `recursive` theirs as well (depth first). Returns the count.
    int            getNameSpaceVec(std::vector<NodeNameSpace*>& out, bool recursive = false) const;
    const std::vector<NodeNameSpace*>& children() const { return _children; }

    // Namespaces whose DEF names findNode also sees, after this one's own.
    void addUsingNameSpace(NodeNameSpace& other);
    void removeAllUsingNameSpace();
    const std::vector<NodeNameSpace*>& usingNameSpaces() const { return _using; }

    // Components the scene declared; they live until the system exits.
    void addComponent(Component& component);
    const std::vector<Component*>& components() const { return _components; }

    // META entries; setting a name again replaces its content.
    void                         setMetaData(const std::string& name, const std::string& content);
    const std::string*           getMetaData(const std::string& name) const;
    const std::vector<MetaData>& metaDataVec() const { return _metaData; }

    // ROUTE by names: the source field by its out-slot name, the destination by its in-slot
    // name (field names work too). A name may be a context root's type name, which routes from
    // or to the context's root of that type. Failures are logged with their reason.
    Route* createRoute(const char* fromNodeName, const char* fromFieldName, const char* toNodeName,
                       const char* toFieldName);
    bool   deleteRoute(const char* fromNodeName, const char* fromFieldName, const char* toNodeName,
                       const char* toFieldName);

    // EXPORT localName AS exportName (the local name when empty).
    bool  exportNode(const std::string& localName, const std::string& exportName = std::string());
    bool  exportNode(Node& node, const std::string& exportName);
    Node* getExportedNode(const std::string& exportName) const;
    bool  removeExportedNode(const std::string& exportName);
    const std::vector<Export>& exportVec() const { return _exports; }

    // IMPORT from.exportName AS localName (the export name when empty). The export need not
    // exist yet; it is looked up whenever the import is used.
    bool  importNode(NodeNameSpace& from, const std::string& exportName, const std::string& localName = std::string());
    // The same with the exporting namespace given by its address (findNameSpace).
    bool  importNode(const std::string& from, const std::string& exportName, const std::string& localName = std::string());
    // The node behind an import; null, logged, when the import does not resolve, and null
    // without a word for a name that is no import.
    Node* getImportedNode(const std::string& localName) const;
    bool  removeImport(const std::string& localName);
    const std::vector<Import>& importVec() const { return _imports; }

    // Sends `value` into the field of the node behind the import `localName`.
    bool     transferEventToExport(const double& time, const std::string& localName, const std::string& fieldName,
                                   Field& value);
    // Passes an event of an exported node of this namespace to every namespace that imports it,
    // whose import-event subject tells its observers (time, value field, out-slot). Returns the
    // number of importers reached.
    unsigned transferEventFromExport(const double& time, Field& value, EventOutSlot& slot);
    // Told of the events of nodes that this namespace imports; made on first use.
    Subject& importEventSubject();
    // Namespaces that import from this one.
    const std::vector<NodeNameSpace*>& importers() const { return _importers; }

    // The context that runs this namespace's scene: the one bound to it (a context binds the
    // namespaces of its roots), else its parent's; null when none.
    Context* context() const;
    void     setContext(Context* context);

    // Bits telling what kind of live content the scope holds; routes of data flow set bit 2.
    void     markDynamicContent(unsigned bit) { _dynamicContent |= bit; }
    unsigned dynamicContent() const { return _dynamicContent; }

    // Where nodes go that outlive their namespace. Never destroyed.
    static NodeNameSpace& detached();

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

    // Called by Node for every node that comes or goes (creation, transfer, destruction).
    void linkNode(Node& node);
    void unlinkNode(Node& node);
    void dropExports(Node& node);
    // Sets the node's exported bit from whether an export still names it.
    void updateExported(Node& node) const;
    // Name look-up without the messages of findNode; `imported` tells whether an import
    // answered.
    Node* lookupName(const std::string& key, bool& imported) const;
    Node* localNode(const std::string& key) const;
    // A node named by a ROUTE end: a node by findNode, or the root of a context root type.
    Node* routeNode(const std::string& name, bool create, bool& isContextRoot, bool& imported);
    const Import* findImport(const std::string& localName) const;
    void addImporter(NodeNameSpace& importer);
    void removeImporter(NodeNameSpace& importer);
    void forgetImportsFrom(NodeNameSpace& exporter);

    std::string                  _name;
    bool                         _autoNamed = false;
    NodeNameSpace*               _parent = nullptr;
    std::vector<NodeNameSpace*>  _children;
    mutable NodeTypeNameSpace*   _typeNameSpace;
    mutable bool                 _ownsTypeNameSpace = false;
    Node*                        _root = nullptr;
    std::map<std::string, Entry> _defMap;
    Node*                        _firstNode = nullptr;  // every node of the namespace, linked through
    Node*                        _lastNode = nullptr;   // Node::_nsPrev and _nsNext
    int                          _nodeCount = 0;
    Context*                     _context = nullptr;
    unsigned                     _dynamicContent = 0;
    std::vector<NodeNameSpace*>  _using;
    std::vector<NodeNameSpace*>  _usedBy;  // the other side of _using
    std::vector<Component*>      _components;
    std::vector<MetaData>        _metaData;
    std::vector<Export>          _exports;
    std::vector<Import>          _imports;
    std::vector<NodeNameSpace*>  _importers;    // namespaces with an Import from this one
    std::vector<NodeNameSpace*>  _importsFrom;  // the other side of _importers
    Subject*                     _importEventSubject = nullptr;
    std::vector<SmartPtr<Node>>  _routeRoots;  // context root nodes made for ROUTE ends
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_NODETYPENAMESPACE_H
#define ORVANE_BASE_NODETYPENAMESPACE_H

#include "base/BaseObject.h"
#include "base/Node.h"
#include "base/SmartPtr.h"

#include <cstdint>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvane {

class NodeType;
class ProtoLibrary;
class Subject;

// How type names are compared; zero is case-sensitive.
enum SearchCaseType : std::int32_t { CaseSensitive = 0, CaseInsensitive = 1 };

// A named scope of node types. Roots are registered process-wide by name; nested scopes hide
// the types of their parents: look-up starts in one scope and climbs towards its root.
class ORVANE_API NodeTypeNameSpace : public BaseObject {
public:
    using TypeMap = std::unordered_map<std::string, NodeType*>;

    // Without parent the namespace is a root, registered under its name.
    static NodeTypeNameSpace* create(const char* name, NodeTypeNameSpace* parent);
    ~NodeTypeNameSpace() override;

    const std::string& name() const { return _name; }
    std::uint64_t      ID() const { return _ID; }
    NodeTypeNameSpace* parent() const { return _parent; }
    void               setParent(NodeTypeNameSpace* parent);
    NodeType*          firstProto() const { return _firstProto; }
    ProtoLibrary*      protoLibrary() const { return _protoLibrary; }
    void               setProtoLibrary(ProtoLibrary* library) { _protoLibrary = library; }
    const std::vector<NodeTypeNameSpace*>& children() const { return _children; }

    // This namespace only.
    NodeType* findLocalType(const std::string& name, SearchCaseType searchCase = CaseSensitive) const;
    // An address: a type name, "a::b::Name" through nested namespaces, or a numeric type ID.
    static NodeType* findType(const NodeTypeNameSpace* start, const std::string& address,
                              SearchCaseType searchCase = CaseSensitive);
    static NodeType* findAbsolutType(const std::string& address, SearchCaseType searchCase = CaseSensitive);
    // "a::b": a child scope here or in an enclosing scope, or a root, then its children.
    NodeTypeNameSpace*        findNameSpace(const std::string& address) const;
    static NodeTypeNameSpace* findAbsolutNameSpace(const std::string& address);
    static NodeTypeNameSpace* findNameSpace(std::uint64_t id);

    // Makes `type` known here under `name` (its own name when null); null when another type
    // already answers to that name from here.
    NodeType* refType(const NodeType& type, const char* name = nullptr);

    Node* createLocalNode(BaseObject* parent, const std::string& typeName, const char* nodeName,
                          NodeCreator creator = UnknownCreator);

    // Filter: 0 all, 1 concrete native, 2 abstract, 3 proto. Returns the count.
    int             getTypeVec(std::vector<NodeType*>& out, int filter = 0) const;
    unsigned        typeCount() const { return static_cast<unsigned>(_typeMap.size()); }
    static int      getNameSpaceVec(std::vector<NodeTypeNameSpace*>& out, bool rootsOnly);
    static unsigned nameSpaceCount();

    bool fillAbsolutAddress(std::string& out) const;
    bool hasAbsolutAddress() const;

    void        dump() const;
    static void dumpStatic();

    static Subject& newObjectSubject();
    static Subject& deleteObjectSubject();

    // Keeps a type made at run time (a prototype, an alias, a loader's stand-in) for the
    // namespace's life.
    void adoptType(NodeType& type);

    NodeTypeNameSpace(const NodeTypeNameSpace&) = delete;
    NodeTypeNameSpace& operator=(const NodeTypeNameSpace&) = delete;

private:
    friend class NodeType;

    NodeTypeNameSpace(const char* name, NodeTypeNameSpace* parent);

    void regType(NodeType& type);
    void unregType(NodeType& type);
    // Drops every entry that names `type`, referenced ones included.
    void        forgetType(const NodeType& type);
    static void forgetTypeEverywhere(const NodeType& type);
    NodeTypeNameSpace* findChild(const std::string& name) const;

    std::string                     _name;
    std::uint64_t                   _ID;
    NodeTypeNameSpace*              _parent = nullptr;
    std::vector<NodeTypeNameSpace*> _children;
    TypeMap                         _typeMap;
    TypeMap                         _lowerTypeMap;
    NodeType*                       _firstProto = nullptr;
    ProtoLibrary*                   _protoLibrary = nullptr;
    std::vector<SmartPtr<NodeType>> _ownedTypes;
};

// The root namespace of the native node types.
ORVANE_API NodeTypeNameSpace& theBaseNodeTypeFactory();

} // namespace Orvane

#endif

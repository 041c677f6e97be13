#ifndef ORVANE_BASE_NODETYPE_H
#define ORVANE_BASE_NODETYPE_H

#include "base/BitVector.h"
#include "base/Node.h"
#include "base/NodeLayout.h"
#include "base/RefCountObject.h"
#include "base/SmartPtr.h"

#include <atomic>
#include <cstdint>
#include <list>
#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Orvane {

class Component;
class Node;
class NodeNameSpace;
class NodePartDesc;
class NodeProc;
class NodeTypeNameSpace;
class ProtoDeclaration;

// The status text of a type, as a number.
enum NodeTypeStatus : std::int32_t {
    InvalidStatus = 0, ExperimentalStatus = 1, AlphaStatus = 2, BetaStatus = 3, StableStatus = 4,
    DeprecatedStatus = 5,
};

// One kind of scene-graph node: its place in the type tree, its descriptors in slot order, and the
// functions that check, create and drive its nodes. Native types are declared by static
// registration code; abstract types have neither creator nor prototype.
class ORVANE_API NodeType : public RefCountObject {
public:
    using TypeCheckFunc = bool (*)(const Node* node);
    using CreateFunc    = Node* (*)(NodeType& type, NodeNameSpace& nameSpace, const char* name);
    using ProcFactory   = NodeProc* (*)(NodeType& type, Node& node);
    using DescVec       = std::vector<NodePartDesc*>;
    using DescMap       = std::unordered_map<std::string, NodePartDesc*>;

    // The native constructor: registers the type in its namespace, its component and the ID map.
    NodeType(NodeTypeNameSpace& nameSpace, const char* name, const char* library, const char* parentName,
             const char* defaultDescendantOf, const char* version, const char* component, const char* comment,
             const char* status, const char* description, const char* standard, bool isExtensible,
             bool isContextRoot, TypeCheckFunc typeCheck, CreateFunc creator, ProcFactory procFactory,
             NodePartDesc* descs, unsigned descCount);
    // The proto constructor: a type made from a PROTO or EXTERNPROTO declaration, with library
    // "PROTO". It creates its declaration node in `scene` (when null, in a node namespace of the
    // type's own bound to `nameSpace`), and belongs to `nameSpace`, which keeps it alive.
    NodeType(NodeTypeNameSpace& nameSpace, const char* name, const char* version, const char* component,
             const char* comment, const char* description, const char* standard, NodeNameSpace* scene = nullptr);
    // The alias constructor: stands in `nameSpace` for `proto` (library "ALIAS"), so that a
    // prototype can be used outside the namespace in which it was declared.
    NodeType(NodeTypeNameSpace& nameSpace, NodeType& proto, const char* name);
    ~NodeType() override;

    NodeType(const NodeType&) = delete;
    NodeType& operator=(const NodeType&) = delete;

    const std::string& name() const { return _name; }
    const std::string& library() const { return _library; }
    const std::string& parentName() const { return _parentName; }
    const std::string& defaultDescendantOfName() const { return _defaultDescendantOf; }
    const std::string& version() const { return _version; }
    const std::string& component() const { return _component; }
    const std::string& comment() const { return _comment; }
    const std::string& status() const { return _status; }
    NodeTypeStatus     statusID() const { return _statusID; }
    const std::string& description() const { return _description; }
    const std::string& standard() const { return _standard; }
    std::uint32_t      ID() const { return _ID; }
    NodeTypeNameSpace& nameSpace() const { return *_nameSpace; }
    Component*         compObj() const { return _compObj; }
    NodeType*          parentNodeType() const { return _parentNodeType; }
    NodeType*          defaultDescendant() const { return _defaultDescendant; }
    const std::list<NodeType*>& derivedNodeTypeList() const { return _derivedNodeTypeList; }
    bool               isAbstract() const { return !_creator && !_protoDeclaration; }
    bool               isProto() const { return _protoDeclaration != nullptr; }
    NodeType*          isAliasOf() const { return _isAliasOf; }
    bool               isContextRoot() const { return _isContextRoot; }
    bool               isExtensible() const { return _isExtensible; }
    bool               isInitialized() const { return _isInitialized; }
    std::uint32_t      objectCount() const { return _objectCount.load(std::memory_order_relaxed); }
    TypeCheckFunc      typeCheckFunc() const { return _typeCheck; }
    bool               checkType(const Node* node) const { return _typeCheck && _typeCheck(node); }

    unsigned          partCount() const { return static_cast<unsigned>(_descVec.size()); }
    NodePartDesc*     part(unsigned index) const { return index < _descVec.size() ? _descVec[index] : nullptr; }
    DescVec::const_iterator beginPart() const { return _descVec.begin(); }
    DescVec::const_iterator endPart() const { return _descVec.end(); }
    const DescVec&    localParts() const { return _localDescVec; }
    std::uint32_t     protoPartCount() const { return _protoPartCount; }
    ProtoDeclaration* protoDeclaration() const { return _protoDeclaration; }

    NodePartDesc* findPart(const std::string& name) const;
    NodePartDesc* findFieldPart(const std::string& name) const;
    NodePartDesc* findInSlotPart(const std::string& name) const;
    NodePartDesc* findOutSlotPart(const std::string& name) const;
    // The mask of the base type's logFeature part when this type has it, else empty.
    PartMask      logFeatureMask() const { return _logFeatureMask; }

    bool fillAbsolutAddress(std::string& out) const;
    bool hasAbsolutAddress() const;

    bool operator==(const NodeType& other) const { return this == &other; }

    // Type tree.
    bool         isA(const NodeType& other) const;
    std::int32_t isADistance(const NodeType& other) const;
    bool         isAGenericGroupNode() const;
    bool         isALeafNode() const;
    NodeType*    isDefaultDescendantOf() const;
    bool         setDefaultDescendant(NodeType* type);

    // Multiple inheritance of abstract types: further types this one is a kind of beside its
    // parent (an X3D grouping node is also a bounded object). Named before initType, which
    // resolves them; their descriptors are not merged, the type declares those fields itself.
    void                          addAdditionalParent(const char* name);
    const std::vector<NodeType*>& additionalParents() const { return _additionalParents; }
    // isA that also follows the additional parents of this type and of its ancestors.
    bool         isKindOf(const NodeType& other) const;
    // The shortest step count to `other` along parents and additional parents; -1 when none.
    std::int32_t kindDistance(const NodeType& other) const;

    // Another name for one of the type's parts (a field renamed between standard versions): from
    // initType on, the alias and its slot names find the part wherever its own names do.
    void addPartAlias(const char* alias, const char* partName);

    // The field in which the X3D XML encoding puts a node of this type when its element names
    // none: "children" unless the type's catalog set another (Shape's parts, geometry, ...).
    const std::string& containerField() const { return _containerField; }
    void               setContainerField(const char* name) { _containerField = name && *name ? name : "children"; }

    // Completes the type once all types exist; the number of failures. `force` runs it again.
    int        initType(bool force = false);
    static int initTypeTree(bool force = false);

    static NodeType*   findType(unsigned int id);
    static unsigned    typeCount();
    // Filter: 0 all, 1 concrete native, 2 abstract, 3 proto. Returns the count.
    static int         getTypeVec(std::vector<NodeType*>& out, int filter = 0);
    static NodeType*   findContextRootType(const std::string& name);
    static std::mutex& typeIDMapMutex();
    static void        dumpStatic();
    static int         reportDocStatus(std::ostream& out, bool verbose);
    // The report asked for at start-up: with `set`, written to the log, every type for the text
    // "all" and only the incomplete ones otherwise; true when every type is documented. Without
    // `set` nothing is checked and the answer is true.
    static bool        reportDocStatus(const std::string& text, bool set);
    void               dump() const;

    // The one place where nodes come into being.
    Node*        createNode(BaseObject* parent, const char* name = nullptr, NodeCreator creator = UnknownCreator) const;
    static Node* createNode(BaseObject* parent, const char* typeName, const char* name, NodeCreator creator);
    NodeProc*    createProc(Node& node) const;

private:
    friend class Component;
    friend class Node;
    friend class NodeTypeNameSpace;
    friend class ProtoDeclaration;

    static std::uint32_t nextTypeID();
    // Enters the type in the ID map; every constructor does.
    void registerID();
    int  initProtoType();
    // Forgets the parent and the merged parts; fills the name maps from the merged parts.
    void clearParts();
    void mapParts();
    // The alias of this proto type in `target`, made on first need.
    NodeType* aliasIn(NodeTypeNameSpace& target);

    bool         kindOf(const NodeType& other, unsigned depth) const;
    std::int32_t kindDistance(const NodeType& other, unsigned depth) const;
    // Adds `delta` to this type's node count and to every ancestor's.
    void changeObjCounter(int delta) const;
    void setStatusID();
    // Lays out the block of this type's nodes after the node object.
    void computeLayout();

    // The block layout of new nodes (null before the type is laid out), and every layout made
    // so far: nodes built with an older one still use it.
    const NodeLayout*                        _layout = nullptr;
    std::vector<std::unique_ptr<NodeLayout>> _layouts;

    NodeTypeNameSpace*   _nameSpace;
    Component*           _compObj = nullptr;
    bool                 _isInitialized = false;
    // Nodes of the type and its descendants; nodes are made and released on any thread.
    mutable std::atomic<std::uint32_t> _objectCount{0};
    std::uint32_t        _ID;
    std::string          _name;
    std::string          _library;
    std::string          _parentName;
    std::string          _defaultDescendantOf;
    std::string          _version;
    std::string          _component;
    std::string          _comment;
    std::string          _status;
    std::string          _description;
    std::string          _standard;
    NodeTypeStatus       _statusID = InvalidStatus;
    bool                 _isExtensible;
    TypeCheckFunc        _typeCheck;
    CreateFunc           _creator;
    ProcFactory          _procFactory;
    NodeType*            _parentNodeType = nullptr;
    NodeType*            _defaultDescendant = nullptr;
    NodeType*            _isAliasOf = nullptr;
    bool                 _isContextRoot;
    ProtoDeclaration*    _protoDeclaration = nullptr;
    std::uint32_t        _protoPartCount = 0;
    std::list<NodeType*> _derivedNodeTypeList;
    DescVec              _descVec;
    DescVec              _localDescVec;
    DescMap              _fieldMap;
    DescMap              _inSlotMap;
    DescMap              _outSlotMap;
    PartMask             _logFeatureMask;
    SmartPtr<NodeType>   _aliasHold;   // an alias keeps the type it stands for
    SmartPtr<NodeNameSpace> _protoScene;  // where a declaration made without scene lives
    std::uint32_t        _protoChanges = 0;  // the declaration's change count at initType
    std::vector<std::string> _additionalNames;
    std::vector<NodeType*>   _additionalParents;
    std::vector<std::pair<std::string, std::string>> _partAliases;  // alias, part name
    std::string              _containerField = "children";
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_NODE_H
#define ORVANE_BASE_NODE_H

#include "base/AttachmentBag.h"
#include "base/BitVector.h"
#include "base/NodeLayout.h"
#include "base/NodePart.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>
#include <string>
#include <vector>

namespace Orvane {

class Context;
class EventInSlot;
class EventOutSlot;
class Field;
class FieldType;
class MFString;
class NodeLink;
class NodeNameSpace;
class NodePart;
class NodePartDesc;
class NodeProc;
class NodeType;
class SFNode;
class Subject;
enum NodePartType : std::int32_t;
enum NodePartDataType : std::int32_t;
enum NodePartValueRestriction : std::int32_t;

enum NodeState : std::int32_t { Creation = 0, Setup = 1, Realize = 2, Live = 3, Dispose = 4 };

// Who created a node; stored unchanged. createNode uses SystemCreator for a default descendant.
enum NodeCreator : std::int32_t {
    UnknownCreator = 0, SystemCreator = 1, RuntimeCreator = 2, InvalidCreator = 3, LoaderCreator = 4,
    DynamicCreator = 5,
};

// Per-node log switches, selected by the node's logFeature field; bit n of the debug flags is
// feature n.
enum LogFeature : std::int32_t {
    LogNone = 0, LogState = 1, LogChild = 2, LogParent = 3, LogRoute = 4, LogFieldValueChanged = 5,
    LogEventIn = 6, LogEventOut = 7, LogGuiView = 8, LogGuiEdit = 9, LogEverything = 10,
};

// Which names findField compares, in which order. An exposed field N answers to N as field name,
// to "set_"+N as in-slot name and to N+"_changed" as out-slot name.
enum FieldSearchOrder : std::int32_t {
    SearchFieldName      = 0,  // field names only
    SearchFieldThenSlots = 1,  // field names, then in-slot, then out-slot names
    SearchSlotsThenField = 2,  // in-slot, out-slot, then field names
    SearchInSlot         = 3,  // in-slot names, then field names: the receiving end of a route
    SearchOutSlot        = 4,  // out-slot names, then field names: the sending end of a route
};

// What addChild does when the child lives in another node namespace.
enum NameSpaceTransfer : std::int32_t { KeepNameSpace = 0, TransferNameSpace = 1 };

// How addChild picks the receiving field: the first node field that accepts the child, or the one
// whose allowed type is the child's closest ancestor.
enum NodeTypeMatchMode : std::int32_t { FirstMatch = 0, BestMatch = 1 };

// One instance of a node type in a scene: owns one part per descriptor of its type, lives in a
// node namespace, hangs in its parents' node fields through node links, and runs a lifecycle
// state machine that calls its processor's hooks. Nodes are made only by NodeType::createNode.
class ORVANE_API Node : public AttachmentBag {
public:
    // Bits of the node's flag word.
    enum Flag : std::uint32_t {
        ProtoBodyFlag    = 2,  // the node belongs to a prototype declaration's body
        MarkedFlag       = 4,  // a change of this node was passed up to its parents
        SystemFlag       = 8,  // the system made the node for itself (a context's setup node)
        ChildChangedFlag = 16, // something below this node changed
    };

    // The base type "Node" and its creator, processor factory and type check.
    static NodeType& classType();
    static Node*     createNode(NodeType& type, NodeNameSpace& nameSpace, const char* name);
    static NodeProc* createProc(NodeType& type, Node& node);
    static bool      isNodeType(const Node* node);

    NodeType&      type() const { return *_type; }
    NodeNameSpace& nameSpace() const { return *_nameSpace; }
    NodeProc*      proc() const { return _proc; }
    // Takes ownership; the old processor is deleted.
    void           setProc(NodeProc* proc);
    NodeCreator    creator() const { return _creator; }
    const char*    creatorName() const { return creatorName(_creator); }
    static const char* creatorName(NodeCreator creator);

    // Naming and identity. An unnamed node is known by its ID text, "#" and its number: "#"
    // starts a comment in the file syntax, so no DEF name can look like it.
    const std::string& name() const;
    bool               hasName() const { return _name != nullptr; }
    bool               isAutoNamed() const;
    const std::string& getIDStr() const;
    std::uint64_t      ID() const { return _ID; }
    bool               rename(const std::string& newName);
    // Published by its namespace (EXPORT): its events go to the importing namespaces too.
    bool               isExported() const { return _exported; }
    bool               fillAbsolutAddress(std::string& out) const;
    bool               hasAbsolutAddress() const;

    static Node*       findNode(std::uint64_t id);
    static bool        findNode(const Node* node);
    static std::size_t idMapSize();
    // The number in an ID text ("#42"), or 0 when the text is none.
    static std::uint64_t parseIDStr(const std::string& text);

    // Lifecycle.
    NodeState          state() const { return _state; }
    const char*        stateName() const { return stateName(_state); }
    static const char* stateName(NodeState state);
    bool               isLive() const { return _state == Realize || _state == Live; }
    bool               setNodeState(const double& time, NodeState state) { return setState(time, state); }
    // The node and every node below it.
    bool               setTreeState(const double& time, NodeState state);
    bool               realize(const double& time) { return setTreeState(time, Realize); }
    bool               isRealized() const { return isLive(); }
    // Sets the state without hooks or checks; for code that drives fields directly.
    void               setStateUnchecked(NodeState state) { _state = state; }

    // Parts, indexed by descriptor ID; dynamic fields follow the type's parts. The two fields
    // every node inherits (logFeature, metadata) are made on first use: findField makes them,
    // part and builtField give null until then, which stands for their default value.
    unsigned      partCount() const { return static_cast<unsigned>(_parts.size()); }
    NodePart*     part(unsigned id) const { return id < _parts.size() ? _parts[id] : nullptr; }
    Field*        builtField(unsigned id) const;
    // builtField, but null too for a field made on demand that holds its default: the fields
    // whose values a copy must carry over.
    Field*        fieldWithValue(unsigned id) const;
    // True for a part whose field the node makes on first use, made yet or not.
    bool          madeOnDemand(unsigned id) const { return _parts.layout() && _parts.layout()->madeOnDemand(id); }
    Field*        findField(unsigned id) const;
    Field*        findField(const std::string& name, FieldSearchOrder order = SearchFieldThenSlots) const;
    Field*        findField(NodePartValueRestriction restriction) const;
    // The slots of a field, made on first need where its access type has them. By name the
    // receiving end looks at in-slot names, then field names, the sending end at out-slot names,
    // then field names; a missing one is reported. The IDs are -1 for none.
    EventInSlot*  findEventInSlot(const std::string& name) const;
    EventInSlot*  findEventInSlot(unsigned id) const;
    EventOutSlot* findEventOutSlot(const std::string& name) const;
    EventOutSlot* findEventOutSlot(unsigned id) const;
    int           findEventInSlotID(const std::string& name) const;
    int           findEventOutSlotID(const std::string& name) const;
    NodePartDesc* findPartDesc(unsigned id) const;
    unsigned      partDescCount() const { return partCount(); }
    Field*        addDynamicField(const NodePartDesc& desc);
    Field*        addDynamicField(NodePartType partType, NodePartDataType dataType, const char* name,
                                  unsigned flags = 0, const char* defaultValue = nullptr);
    bool          removeDynamicField(unsigned id);
    bool          hasDynamicField() const;
    PartMask      dynamicFieldMask() const;
    bool          equalFieldValues(const Node& other) const;

    // Change state.
    std::uint32_t flags() const { return _flags; }
    bool          hasFlag(Flag flag) const { return (_flags & flag) != 0; }
    void          setFlag(Flag flag) { _flags |= flag; }
    void          clearFlag(Flag flag) { _flags &= ~static_cast<std::uint32_t>(flag); }
    PartMask      changedMask() const { return _changedMask; }
    void          markChanged(PartMask mask)
    {
        _changedMask |= mask;
        // The logFeature field is part 0 of every type that has it.
        if (_hasLogFeature && mask.test(PartMask::bit(0)))
            updateLogFeature();
    }
    void          clearChangedMask();
    bool          checkChangedMask(PartMask mask) const { return _changedMask.test(mask); }
    PartMask      isChangingMask() const { return _isChangingMask; }
    void          setIsChanging(PartMask mask) { _isChangingMask.set(mask); }
    void          clearIsChanging(PartMask mask) { _isChangingMask.clear(mask); }
    bool          checkIsChangingMask(PartMask mask) const { return _isChangingMask.test(mask); }

    // Tell the parents, up the tree, that something below them changed.
    void markParent(int level);

    // The node's reaction to a change of one of its fields; false stops the change there.
    virtual bool fieldChanged(Field& field, const double& time, Field* source);

    // The two fields of every node; null for a type outside the tree of "Node".
    MFString* logFeature() const;
    SFNode*   metadata() const;
    std::uint32_t debugFlags() const { return _debugFlags; }
    void          setDebugFlags(std::uint32_t flags) { _debugFlags = flags & 0xfffu; }
    bool          checkLogFeature(LogFeature feature) const { return (_debugFlags >> feature) & 1u; }

    // Parents.
    // The links that point to the node. Most nodes have one parent: that link is kept in
    // place, and only a second one moves the list to the heap.
    class ORVANE_API ParentList {
    public:
        using const_iterator = NodeLink* const*;

        ParentList() = default;
        ParentList(const ParentList&) = delete;
        ParentList& operator=(const ParentList&) = delete;
        ~ParentList()
        {
            if (_capacity)
                delete[] _many;
        }

        const_iterator begin() const { return _capacity ? _many : &_one; }
        const_iterator end() const { return begin() + _size; }
        std::size_t    size() const { return _size; }
        bool           empty() const { return _size == 0; }
        NodeLink*      front() const { return *begin(); }
        NodeLink*      back() const { return begin()[_size - 1]; }

        void push_back(NodeLink* link);
        // Removes the first entry of `link`; false when there is none.
        bool remove(NodeLink* link);

    private:
        union {
            NodeLink*  _one = nullptr;
            NodeLink** _many;
        };
        std::uint32_t _size = 0;
        std::uint32_t _capacity = 0;
    };
    const ParentList&          parentLinks() const { return _parentLinks; }
    ParentList::const_iterator beginParent() const { return _parentLinks.begin(); }
    ParentList::const_iterator endParent() const { return _parentLinks.end(); }
    unsigned                   parentCount() const { return static_cast<unsigned>(_parentLinks.size()); }
    bool                       hasParents() const { return !_parentLinks.empty(); }
    NodeLink*                  getFirstParent() const { return _parentLinks.empty() ? nullptr : _parentLinks.front(); }
    NodeLink*                  getLastParent() const { return _parentLinks.empty() ? nullptr : _parentLinks.back(); }

    // Children.
    NodeLink* addChild(Node* child, const char* fieldName = nullptr, NameSpaceTransfer transfer = KeepNameSpace,
                       NodeTypeMatchMode match = BestMatch);
    bool      removeChild(Node* child);
    void      removeAllChildren(const double& time);
    void      removeAllParentLinks(const double& time);
    NodeLink* findChildLink(Node* child) const;
    unsigned  childCount() const;
    // Every node below this one, each once, depth first in field order.
    void      collectAllChildren(std::vector<Node*>& out, bool recursive = true) const;
    // Puts `other` in this node's place in every parent.
    bool      replace(Node& other);
    // Moves the children of `other` into the same fields of this node; context roots only.
    bool      merge(Node& other);
    // A node of the same type with the same field values; children are shared, not copied.
    Node*     clone(NodeNameSpace* nameSpace = nullptr, const char* name = nullptr) const;
    bool      transfer(const double& time, NodeNameSpace& nameSpace);
    // The root node of the outermost namespace around this node, null when it has none.
    Node*     contextRoot() const;
    // The context that runs the node's scene, through its namespace; null when none.
    Context*  context() const;
    // The live nodes of `type` (all with null), with `derived` also of its descendants.
    static int fillNodeVec(std::vector<Node*>& out, NodeType* type, bool derived);

    void dump() const;
    void dumpField(PartMask mask) const;

    // Process-wide notifications; each is sent only when it has observers.
    static Subject& newObjectSubject();
    static Subject& stateChangedSubject();
    static Subject& logFeatureChangedSubject();
    static Subject& childAddedSubject();
    static Subject& childRemovedSubject();
    static Subject& nameSpaceChangedSubject();
    static Subject& codeErrorSubject();
    static Subject& deleteObjectSubject();

    Node(const Node&) = delete;
    Node& operator=(const Node&) = delete;

    // A node made by NodeType::createNode gets one block: the node object, then its declared
    // fields, part table and default processor at the offsets its type laid out. Any other
    // `new` of a node gets the object alone, and its parts come from the heap. Blocks come from
    // the NodeBlockPool.
    static void* operator new(std::size_t size);
    static void  operator delete(void* block) noexcept;

protected:
    Node(NodeType& type, NodeNameSpace& nameSpace, const char* name);
    ~Node() override;

    // The last reference is gone: dispose and let the children go.
    void shutdown() const override;

    // Puts `field` into slot `id` as the part of `type`'s descriptor there; the old field of the
    // slot, if any, is deleted. With `setDefault` the field takes its descriptor's default value.
    bool regField(Field& field, NodeType& type, unsigned id, bool setDefault);
    void unregField(unsigned id);
    // Makes the field of descriptor `id` unless the node has it already.
    Field* makeField(unsigned id, bool setDefault);
    // Makes every declared field the node does not have yet, each at its default.
    void makeDeclaredFields();
    // The field type of descriptor `id` where the node's layout places its field in the block;
    // null where the field is made on the heap.
    const FieldType* placedType(unsigned id, const NodePartDesc& desc) const;
    // Makes the next Node::operator new on this thread lay out a block for `type`; returns
    // the request it replaces.
    static const NodeType* requestBlock(const NodeType* type);

private:
    friend class NodeLink;
    friend class Field;
    friend class NodePart;
    friend class NodeNameSpace;
    friend class NodeType;


    bool setState(const double& time, NodeState state);
    bool updateTreeState(const double& time, NodeState state);
    void updateLogFeature();
    void addParentLink(NodeLink* link) { _parentLinks.push_back(link); }
    bool removeParentLink(NodeLink* link);
    Field* placeDynamicField(NodePartDesc* desc);
    // True when `p` lies in this node's block after the node object.
    bool inBlock(const void* p) const;
    void destroyPart(NodePart* part);
    void destroyProc(NodeProc* proc);

    // The parts by descriptor ID, dynamic fields after the declared ones. A node whose type
    // places every declared field in the block keeps no table: a field is found from its
    // offset, and a bit tells whether it is built. Anything else (a field from the heap, a
    // dynamic field) moves the parts into a table on the heap.
    class PartTable {
    public:
        PartTable() = default;
        PartTable(const PartTable&) = delete;
        PartTable& operator=(const PartTable&) = delete;
        ~PartTable()
        {
            if (_inTable)
                delete[] _data;
        }

        // `count` empty slots: in a table, or, for a layout that places them all, found in `area`.
        void init(std::uint32_t count, char* area, const NodeLayout* layout);
        std::size_t size() const { return _size; }
        bool        empty() const { return _size == 0; }
        NodePart*   operator[](std::size_t i) const { return _inTable ? _data[i] : placed(i); }
        void        set(std::size_t i, NodePart* part);
        // No part built yet, and every declared field has its place in the block.
        bool fresh() const { return !_inTable && !_built && _layout && _layout->placesAll; }
        // The parts of the bits in `built` now stand in their places.
        void setAllBuilt(std::uint64_t built)
        {
            if (!_inTable)
                _built = built;
        }
        NodePart*   back() const { return (*this)[_size - 1]; }
        void        pop_back() { --_size; }
        void        push_back(NodePart* part);
        // The block area after the node object and its layout; null for a node without block.
        char* area() const
        {
            return _areaOffset ? reinterpret_cast<char*>(reinterpret_cast<std::uintptr_t>(this) + _areaOffset) : nullptr;
        }
        // The descriptor the layout gives the place `part` is at; null outside the area.
        NodePartDesc* descAt(const void* part) const
        {
            const std::uintptr_t at = reinterpret_cast<std::uintptr_t>(part) - reinterpret_cast<std::uintptr_t>(area());
            return _areaOffset && at < _layout->areaSize ? _layout->slotDescs[at / 8] : nullptr;
        }
        const NodeLayout* layout() const { return _layout; }

    private:
        NodePart* placed(std::size_t i) const
        {
            return i < 64 && ((_built >> i) & 1u) ? std::launder(reinterpret_cast<NodePart*>(area() + _layout->fieldOffsets[i]))
                                      : nullptr;
        }
        // The table's room: its size rounded up to a power of two, at least 4. It is what every
        // table is made with, and a table that shrank has at least that much.
        static std::uint32_t roomFor(std::uint32_t size)
        {
            std::uint32_t room = 4;
            while (room < size)
                room *= 2;
            return room;
        }
        // Moves the parts into a table with room for `size` entries.
        void toTable(std::uint32_t size);

        // The table on the heap once there is one; before, the parts built in their places.
        union {
            NodePart**    _data;
            std::uint64_t _built = 0;
        };
        const NodeLayout* _layout = nullptr;
        std::uint32_t     _size = 0;
        // Where the block area lies, counted from this table inside the node; 0 without area.
        std::uint32_t     _areaOffset : 31 = 0;
        std::uint32_t     _inTable : 1 = 0;
    };

    NodeType*                          _type;
    NodeProc*                          _proc = nullptr;
    NodeNameSpace*                     _nameSpace;
    std::unique_ptr<const std::string> _name;
    std::uint64_t                      _ID = 0;
    NodeState                          _state : 8 = Creation;
    // The ID text is made on first use and kept beside the ID map: most nodes never print it.
    mutable bool                       _idTextKept = false;
    // The logFeature values as bits by LogFeature.
    std::uint16_t                      _debugFlags : 12 = 0;
    std::uint16_t                      _hasLogFeature : 1;
    // Set once a field of the node has event slots or listeners: only then can it have routes.
    std::uint16_t                      _fieldsWithEvents : 1 = 0;
    // Set while one of the namespace's exports names this node.
    std::uint16_t                      _exported : 1 = 0;
    NodeCreator                        _creator = UnknownCreator;
    std::uint32_t                      _flags = 0;
    // The node's place in the ID map.
    std::uint32_t                      _idSlot = 0;
    PartMask                           _changedMask;
    PartMask                           _isChangingMask;
    PartTable                          _parts;
    ParentList                         _parentLinks;
    // The namespace's list of its nodes.
    Node*                              _nsPrev = nullptr;
    Node*                              _nsNext = nullptr;
};

} // namespace Orvane

#endif

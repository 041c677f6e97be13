#ifndef ORVANE_BASE_NODE_H
#define ORVANE_BASE_NODE_H

#include "base/AttachmentBag.h"
#include "base/BitVector.h"

#include <cstdint>
#include <string>
#include <vector>

namespace Orvane {

class Field;
class NodeLink;
class NodeProc;
class NodePart;
class NodeType;

enum NodeState : std::int32_t { Creation = 0, Setup = 1, Realize = 2, Live = 3, Dispose = 4 };

// Per-node log switches; bit n of the node's debug flags is feature n.
enum LogFeature : std::int32_t {
    LogNone = 0, LogState = 1, LogChild = 2, LogParent = 3, LogRoute = 4, LogFieldValueChanged = 5,
    LogEventIn = 6, LogEventOut = 7, LogGuiView = 8, LogGuiEdit = 9,
};

// One instance of a node type in a scene: owns one part per descriptor of its type.
class ORVANE_API Node : public AttachmentBag {
public:
    // Bits of the node's flag word.
    enum Flag : std::uint32_t {
        MarkedFlag       = 4,  // a change of this node was passed up to its parents
        ChildChangedFlag = 8,  // something below this node changed
    };

    explicit Node(NodeType& type);

    NodeType&   type() const { return *_type; }
    NodeState   state() const { return _state; }
    bool        isLive() const { return _state == Realize || _state == Live; }
    NodeProc*   proc() const { return _proc; }
    void        setProc(NodeProc* proc);
    std::uint64_t ID() const { return _ID; }
    const std::string& getIDStr() const;

    // Parts, indexed by descriptor ID.
    unsigned  partCount() const { return static_cast<unsigned>(_parts.size()); }
    NodePart* part(unsigned id) const { return id < _parts.size() ? _parts[id] : nullptr; }
    Field*    findField(unsigned id) const;

    // Change state.
    std::uint32_t flags() const { return _flags; }
    bool          hasFlag(Flag flag) const { return (_flags & flag) != 0; }
    void          setFlag(Flag flag) { _flags |= flag; }
    void          clearFlag(Flag flag) { _flags &= ~static_cast<std::uint32_t>(flag); }
    PartMask      changedMask() const { return _changedMask; }
    void          markChanged(PartMask mask) { _changedMask |= mask; }
    void          clearChangedMask();
    bool          checkChangedMask(PartMask mask) const { return _changedMask.test(mask); }
    PartMask      isChangingMask() const { return _isChangingMask; }
    void          setIsChanging(PartMask mask) { _isChangingMask.set(mask); }
    void          clearIsChanging(PartMask mask) { _isChangingMask.clear(mask); }
    bool          checkIsChangingMask(PartMask mask) const { return _isChangingMask.test(mask); }

    // Tell the parents, up the tree, that something below them changed.
    void markParent(int level);

    std::uint32_t debugFlags() const { return _debugFlags; }
    void          setDebugFlags(std::uint32_t flags) { _debugFlags = flags; }
    bool          checkLogFeature(LogFeature feature) const { return (_debugFlags >> feature) & 1u; }

    // The node's reaction to a change of one of its fields; false stops the change there.
    virtual bool fieldChanged(Field& field, const double& time, Field* source);

    const std::vector<NodeLink*>& parentLinks() const { return _parentLinks; }
    void addParentLink(NodeLink* link) { _parentLinks.push_back(link); }
    bool removeParentLink(NodeLink* link);

    // Sets the state directly; the lifecycle state machine is built on top of it.
    void setStateUnchecked(NodeState state) { _state = state; }

protected:
    ~Node() override;

private:
    NodeType*              _type;
    NodeProc*              _proc = nullptr;
    std::vector<NodePart*> _parts;
    std::vector<NodeLink*> _parentLinks;
    std::uint64_t          _ID;
    mutable std::string    _idStr;
    NodeState              _state = Creation;
    std::uint32_t          _flags = 0;
    std::uint32_t          _debugFlags = 0;
    PartMask               _changedMask;
    PartMask               _isChangingMask;
};

} // namespace Orvane

#endif

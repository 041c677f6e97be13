#ifndef ORVANE_BASE_COPYACTION_H
#define ORVANE_BASE_COPYACTION_H

#include "base/TraversAction.h"

#include <cstdint>
#include <set>
#include <unordered_map>
#include <vector>

namespace Orvane {

class Field;
class NodeNameSpace;
class Route;

// A deep copy of a subgraph from one node namespace into another. copy() walks the subgraph
// without recursion; each node is copied by its processor (NodeProc::copy, by default
// copyNode), which creates the node once in the destination namespace with its type and DEF
// name, assigns its field values and hands its routes to the action. The walk then links the
// copied children, so a node shared by several parents stays one shared copy and a cycle is
// copied once. Routes can only be made again once every copy exists: finalize() re-creates each
// collected route between the nodes of the same names in the destination namespace.
//
// Copies start in Setup, whatever state their originals are in; the caller moves them on.
// Internal routes (IS routes of prototype instances, IMPORT forwarding) are not collected: their
// owners make them again for their copies.
class ORVANE_API CopyAction : public TraversAction {
public:
    enum Option : std::uint32_t {
        UseNodes      = 0x4,   // a shared node is copied once and shared again; else once per use
        CopyProcState = 0x10,  // a copy's processor takes over its original's state (NodeProc::copy)
    };

    CopyAction(const double& timeStamp, NodeNameSpace& srcNameSpace, NodeNameSpace& dstNameSpace);
    CopyAction(const CopyAction& other);
    ~CopyAction() override;

    // The skip rules and options back to their defaults (options SkipPrivateField, UseNodes,
    // CopyProcState), no collected routes, no result, nothing copied yet.
    void         reset() override;
    // Re-creates every collected route between the copies, as an ordinary route. The routes
    // stay collected: a second call tries them again.
    virtual void finalize();

    // A route met twice is kept once. The route must live until finalize() or reset().
    void                   addRoute(Route& route);
    const std::set<Route*>& routes() const { return _routes; }

    Node*          result() const { return _result; }
    void           setResult(Node* node) { _result = node; }
    NodeNameSpace& srcNameSpace() const { return *_srcNameSpace; }
    NodeNameSpace& dstNameSpace() const { return *_dstNameSpace; }

    bool useNodes() const { return option(UseNodes); }
    void setUseNodes(bool on) { setOption(UseNodes, on); }
    bool copyProcState() const { return option(CopyProcState); }
    void setCopyProcState(bool on) { setOption(CopyProcState, on); }

    // The whole copy: copyTree, the result, finalize. Answers the copy of `root` (null when a
    // skip rule names it), held by nobody yet, like a node fresh from createNode.
    Node* copy(Node& root);
    // Copies the subgraph below `root` and collects its routes, without making them. Several
    // roots copied by one action share the copies of the nodes they share (a prototype body);
    // one finalize() then makes the routes of all of them.
    Node* copyTree(Node& root);

    // What NodeProc::copy does by default for one node: its copy in the destination namespace
    // with the same type, creator and DEF name (with UseNodes off, a second copy of a node gets
    // no name), every field value that is not a node (dynamic fields too, unless SkipExtField),
    // the processor's state (with CopyProcState), and the node's routes handed to this action.
    // The node-valued fields stay empty: the walk fills them.
    Node* copyNode(Node& source);
    // Parts of copyNode for processors that copy in their own way.
    Node* createCopy(Node& source);
    void  copyValues(Node& source, Node& copy);
    void  addRoutes(Node& source);

private:
    // One step of the walk: a child to copy into a field of its parent's copy, or the end of a
    // node whose children are done (target null).
    struct Visit {
        Node*  node;
        Field* target;
    };

    // Schedules the children of `source` for `copy`, first child on top.
    void pushChildren(Node& source, Node& copy);
    // The copy made for `source` when the walk may have met it before, else null.
    Node* knownCopy(Node& source) const;
    bool  mayMeetAgain(Node& source) const { return _rootsWithParents || source.parentCount() > 1; }
    static bool link(Field& target, Node* child);
    Field* destinationField(Field& field) const;

    std::set<Route*>                  _routes;
    NodeNameSpace*                    _srcNameSpace;
    NodeNameSpace*                    _dstNameSpace;
    Node*                             _result = nullptr;
    // Every copy by its original; the last one when UseNodes is off.
    std::unordered_map<Node*, Node*>  _copies;
    bool                              _rootsWithParents = false;
    std::vector<Visit>                _pending;
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_NODEPROC_H
#define ORVANE_BASE_NODEPROC_H

#include "base/OrvaneExport.h"

#include <string>

namespace Orvane {

class CopyAction;
class EventOutSlot;
class Field;
class Node;
class NodeLink;
class NodeNameSpace;
class Route;
class WriteAction;

// The behaviour of one node, made by its type's processor factory and owned by the node. The
// node calls these hooks; the default processor accepts every change and does nothing else, so a
// type without behaviour of its own can use it as it is.
class ORVANE_API NodeProc {
public:
    NodeProc() = default;
    explicit NodeProc(Node& node) : _node(&node) {}
    NodeProc(const NodeProc&) = delete;
    NodeProc& operator=(const NodeProc&) = delete;
    virtual ~NodeProc() = default;

    // The node it drives; set when the node takes the processor.
    Node* node() const { return _node; }

    // Lifecycle, in the order the node's state machine calls them: setup (Creation to Setup),
    // initialize (to Realize), attach (to Live), detach (Live to Realize), shutdown (Realize to
    // Setup), dispose (to Dispose). The node's state already is the one being entered.
    virtual void setup(const double& time) {}
    virtual void initialize(const double& time) {}
    virtual void attach(const double& time) {}
    virtual void detach(const double& time) {}
    virtual void shutdown(const double& time) {}
    virtual void dispose(const double& time) {}

    // A field of the node changed; false stops the change from being sent on.
    virtual bool fieldChanged(Node& node, Field& field, const double& time, Field* source) { return true; }

    // The node got or lost a child (the link is one of the node's own), or a parent (the link
    // is the parent's).
    virtual void childAdded(NodeLink& link) {}
    virtual void childRemoved(NodeLink& link) {}
    virtual void parentAdded(NodeLink& link) {}
    virtual void parentRemoved(NodeLink& link) {}

    // A route from or to one of the node's fields was made or deleted.
    virtual void routeAdded(Route& route) {}
    virtual void routeRemoved(Route& route) {}

    // An event sent on `slot` of an exported node is passed to the importing side; by default
    // the node's namespace hands it to the namespaces that import the node.
    virtual void exportEvent(EventOutSlot& slot, Field& value, const double& time);

    // Writes the node itself; false lets the writer write it in the common way.
    virtual bool write(WriteAction& action) { return false; }
    // The namespace that the node roots (an inline's scene, for example), when it differs from
    // the one the node lives in; null for none. The writers close such a scope after the node.
    virtual NodeNameSpace* ownNameSpace() const { return nullptr; }
    // Whether that namespace is a document of its own (the scene an inline read from its file):
    // the writers then write the node as a plain one and leave the scope to its own file; only
    // the imports from it follow the node.
    virtual bool ownsDocument() const { return false; }

    // Takes over the state of `from`, the processor of the node this one's node was copied from.
    virtual void copy(const NodeProc& from) {}
    // Makes this node's copy for a deep copy, in the action's destination namespace, and hands
    // the node's routes to the action; the action links the copied children afterwards. By
    // default CopyAction::copyNode. A processor that overrides one of the two copy operations
    // brings the other into scope with `using NodeProc::copy;`.
    virtual Node* copy(CopyAction& action);

    // A short text about the processor's state for diagnostics; empty by default.
    virtual std::string info() const { return std::string(); }

protected:
    // For the processor of a context root: hands the frame values to the context that runs the
    // node's scene. False when the node has no context.
    bool setContextState(const double& timeStamp, double frameRate, double targetRate, double frameTime,
                         float navSpeed);

private:
    friend class Node;
    Node* _node = nullptr;
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_NODEPATH_H
#define ORVANE_BASE_NODEPATH_H

#include "base/OrvaneExport.h"

#include <cstdint>
#include <deque>
#include <list>

namespace Orvane {

class Node;
class NodeLink;

// Names one occurrence of a node that the scene may share through several parents: a root and
// the steps down from it, each a field of the current node and an entry of that field. A path
// holds no node; one whose scene changed fails in node() with a message instead of answering a
// wrong node.
class ORVANE_API NodePath {
public:
    struct Step {
        std::uint32_t fieldId;  // index in the node's field vector
        std::uint32_t childId;  // position in an MFNode field, 0 for an SFNode field
        bool operator==(const Step& other) const = default;
    };
    // Deepest step first: the front reaches the end node, the back leaves the root.
    using StepList = std::deque<Step>;

    NodePath() = default;
    NodePath(const NodePath& other) = default;
    explicit NodePath(Node* node) { setNode(node); }
    explicit NodePath(NodeLink* link) { setNode(link); }
    explicit NodePath(const std::list<NodeLink*>& links) { setNode(links); }
    NodePath& operator=(const NodePath& other) = default;
    virtual ~NodePath();

    // Same root object and the same steps.
    bool operator==(const NodePath& other) const { return _root == other._root && _steps == other._steps; }

    bool            isValid() const { return _root != nullptr; }
    Node*           root() const { return _root; }
    const StepList& steps() const { return _steps; }

    // The node at the end; null, with the reason logged, when the path can not be followed.
    Node*     node() const;
    // The link of the last step; null for an empty path or one that can not be followed. Quiet.
    NodeLink* nodeLink() const;
    // The links of the steps, deepest first as the steps are stored; ends quietly at the first
    // step that can not be followed.
    void      nodeLinks(std::list<NodeLink*>& links) const;

    // One step further down, to `child` at its first place among the end node's fields; the
    // path stays as it is when the end node does not hold the child.
    const NodePath& addNode(Node* child);

    // From the node up to a node without parents, always through the first parent link.
    void setNode(Node* node);
    // Through the link to its child, and from the link's node up as above.
    void setNode(NodeLink* link);
    // From links given deepest first, as nodeLinks lists them.
    void setNode(const std::list<NodeLink*>& links);

    // The path to the occurrence one level up; invalid for a path without steps.
    NodePath parent() const;

    void dump() const;

private:
    enum class StepResult { Ok, NoField, SizeMismatch, NoNode };

    // The link that `step` takes from `from`.
    static StepResult follow(const Node& from, const Step& step, NodeLink*& link);
    // The first place of `child` among the fields of `parent`, as addNode searches.
    static bool findStep(const Node& parent, const Node* child, Step& step);
    // Appends the steps from `node` up through first parent links and sets the root.
    void climb(Node* node);

    StepList _steps;
    Node*    _root = nullptr;
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_GENERICACTION_H
#define ORVANE_BASE_GENERICACTION_H

#include "base/TraversAction.h"

#include <deque>
#include <vector>

namespace Orvane {

// A walk that its user drives from outside: push a node, let pre() collect its children, push
// the ones to visit, pop. The action owns none of the nodes on its stack.
class ORVANE_API GenericAction : public TraversAction {
public:
    explicit GenericAction(const double& timeStamp = 0.0) : TraversAction(timeStamp) {}
    GenericAction(const GenericAction& other) = default;
    ~GenericAction() override;

    // Empties the node stack, then resets the skip rules and options.
    void reset() override;
    // Appends the direct children of the top node to `children`; on an empty stack only logs.
    virtual void pre(std::vector<Node*>& children);

    void         push(Node* node) { _nodeStack.push_back(node); }
    // Nothing happens on an empty stack.
    void         pop()
    {
        if (!_nodeStack.empty())
            _nodeStack.pop_back();
    }
    Node*        top() const { return _nodeStack.empty() ? nullptr : _nodeStack.back(); }
    unsigned int stackDepth() const { return static_cast<unsigned int>(_nodeStack.size()); }

private:
    std::deque<Node*> _nodeStack;  // top at the back
};

} // namespace Orvane

#endif

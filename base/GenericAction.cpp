#include "base/GenericAction.h"

#include "base/Log.h"
#include "base/NodeType.h"

namespace Orvane {

GenericAction::~GenericAction() = default;

void GenericAction::reset()
{
    _nodeStack.clear();
    TraversAction::reset();
}

void GenericAction::pre(std::vector<Node*>& children)
{
    Node* node = top();
    if (!node) {
        ORV_FATAL("Run GenericAction on empty node stack\n");
        return;
    }
    ORV_NOTICE("Run GenericAction on %s/%s (stack depth %d)\n", node->type().name().c_str(), node->getIDStr().c_str(),
               static_cast<int>(_nodeStack.size()));
    node->collectAllChildren(children, false);
}

} // namespace Orvane

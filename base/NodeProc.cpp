#include "base/NodeProc.h"

#include "base/CopyAction.h"
#include "base/Node.h"
#include "base/NodeNameSpace.h"

namespace Orvane {

void NodeProc::exportEvent(EventOutSlot& slot, Field& value, const double& time)
{
    if (_node)
        _node->nameSpace().transferEventFromExport(time, value, slot);
}

Node* NodeProc::copy(CopyAction& action)
{
    return _node ? action.copyNode(*_node) : nullptr;
}

} // namespace Orvane

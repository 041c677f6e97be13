#include "base/NodeProc.h"

#include "base/Context.h"
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

bool NodeProc::setContextState(const double& timeStamp, double frameRate, double targetRate, double frameTime,
                               float navSpeed)
{
    Context* context = _node ? _node->context() : nullptr;
    if (!context)
        return false;
    context->setFrameValues(timeStamp, frameRate, targetRate, frameTime, navSpeed);
    return true;
}

} // namespace Orvane

// Context::write lives beside the writers it drives.
#include "base/Context.h"

#include "base/Node.h"
#include "base/NodeType.h"
#include "base/WriteAction.h"

#include <algorithm>

namespace Orvane {

unsigned int Context::write(WriteAction& action, std::vector<NodeType*>* types)
{
    unsigned int written = 0;
    for (const SmartPtr<Node>& root : _rootBag) {
        if (!root)
            continue;
        if (types && std::find(types->begin(), types->end(), &root->type()) == types->end())
            continue;
        action.writeNode(*root);
        ++written;
    }
    return written;
}

} // namespace Orvane

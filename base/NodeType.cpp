#include "base/NodeType.h"

#include "base/NodePartDesc.h"

namespace Orvane {

NodeType::NodeType(const char* name, NodePartDesc* descs, unsigned count) : _name(name ? name : "")
{
    _parts.reserve(count);
    for (unsigned i = 0; i < count; ++i) {
        _parts.push_back(&descs[i]);
        descs[i].init(*this);
    }
}

} // namespace Orvane

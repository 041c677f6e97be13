#ifndef ORVANE_BASE_NODEPROC_H
#define ORVANE_BASE_NODEPROC_H

#include "base/OrvaneExport.h"

namespace Orvane {

class Field;
class Node;

// The behaviour of one node: the node calls these hooks; the default processor accepts every
// change and does nothing else.
class ORVANE_API NodeProc {
public:
    virtual ~NodeProc() = default;

    // A field of the node changed; false stops the change from being sent on.
    virtual bool fieldChanged(Node& node, Field& field, const double& time, Field* source) { return true; }
};

} // namespace Orvane

#endif

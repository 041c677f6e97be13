#include "base/MFInt32.h"

namespace Orvane {

Field* MFInt32::create(Node& owner)
{
    return new MFInt32(owner);
}

} // namespace Orvane

#include "base/MFPlane.h"

namespace Orvane {

Field* MFPlane::create(Node& owner)
{
    return new MFPlane(owner);
}

} // namespace Orvane

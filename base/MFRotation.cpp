#include "base/MFRotation.h"

namespace Orvane {

Field* MFRotation::create(Node& owner)
{
    return new MFRotation(owner);
}

} // namespace Orvane

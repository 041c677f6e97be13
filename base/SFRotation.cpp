#include "base/SFRotation.h"

namespace Orvane {

Field* SFRotation::create(Node& owner)
{
    return new SFRotation(owner);
}

} // namespace Orvane

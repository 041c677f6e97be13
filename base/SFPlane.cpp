#include "base/SFPlane.h"

namespace Orvane {

Field* SFPlane::create(Node& owner)
{
    return new SFPlane(owner);
}

} // namespace Orvane

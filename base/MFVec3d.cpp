#include "base/MFVec3d.h"

namespace Orvane {

Field* MFVec3d::create(Node& owner)
{
    return new MFVec3d(owner);
}

} // namespace Orvane

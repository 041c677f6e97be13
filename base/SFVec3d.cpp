#include "base/SFVec3d.h"

namespace Orvane {

Field* SFVec3d::create(Node& owner)
{
    return new SFVec3d(owner);
}

} // namespace Orvane

#include "base/MFVec3f.h"

namespace Orvane {

Field* MFVec3f::create(Node& owner)
{
    return new MFVec3f(owner);
}

} // namespace Orvane

#include "base/MFVec2d.h"

namespace Orvane {

Field* MFVec2d::create(Node& owner)
{
    return new MFVec2d(owner);
}

} // namespace Orvane

#include "base/SFVec2d.h"

namespace Orvane {

Field* SFVec2d::create(Node& owner)
{
    return new SFVec2d(owner);
}

} // namespace Orvane

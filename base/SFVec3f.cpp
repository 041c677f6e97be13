#include "base/SFVec3f.h"

namespace Orvane {

Field* SFVec3f::create(Node& owner)
{
    return new SFVec3f(owner);
}

} // namespace Orvane

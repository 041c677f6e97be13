#include "base/SFVec4d.h"

namespace Orvane {

Field* SFVec4d::create(Node& owner)
{
    return new SFVec4d(owner);
}

} // namespace Orvane

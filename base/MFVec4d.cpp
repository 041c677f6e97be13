#include "base/MFVec4d.h"

namespace Orvane {

Field* MFVec4d::create(Node& owner)
{
    return new MFVec4d(owner);
}

} // namespace Orvane

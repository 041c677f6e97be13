#include "base/MFVec2f.h"

namespace Orvane {

Field* MFVec2f::create(Node& owner)
{
    return new MFVec2f(owner);
}

} // namespace Orvane

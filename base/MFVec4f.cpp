#include "base/MFVec4f.h"

namespace Orvane {

Field* MFVec4f::create(Node& owner)
{
    return new MFVec4f(owner);
}

} // namespace Orvane

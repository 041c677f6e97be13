#include "base/MFMatrix3f.h"

namespace Orvane {

Field* MFMatrix3f::create(Node& owner)
{
    return new MFMatrix3f(owner);
}

} // namespace Orvane

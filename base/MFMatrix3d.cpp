#include "base/MFMatrix3d.h"

namespace Orvane {

Field* MFMatrix3d::create(Node& owner)
{
    return new MFMatrix3d(owner);
}

} // namespace Orvane

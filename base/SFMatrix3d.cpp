#include "base/SFMatrix3d.h"

namespace Orvane {

Field* SFMatrix3d::create(Node& owner)
{
    return new SFMatrix3d(owner);
}

} // namespace Orvane

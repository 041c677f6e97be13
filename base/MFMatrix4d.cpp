#include "base/MFMatrix4d.h"

namespace Orvane {

Field* MFMatrix4d::create(Node& owner)
{
    return new MFMatrix4d(owner);
}

} // namespace Orvane

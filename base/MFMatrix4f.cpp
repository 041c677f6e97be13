#include "base/MFMatrix4f.h"

namespace Orvane {

Field* MFMatrix4f::create(Node& owner)
{
    return new MFMatrix4f(owner);
}

} // namespace Orvane

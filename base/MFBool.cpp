#include "base/MFBool.h"

namespace Orvane {

Field* MFBool::create(Node& owner)
{
    return new MFBool(owner);
}

} // namespace Orvane

#include "base/MFColor.h"

namespace Orvane {

Field* MFColor::create(Node& owner)
{
    return new MFColor(owner);
}

} // namespace Orvane

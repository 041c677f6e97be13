#include "base/MFFloat.h"

namespace Orvane {

Field* MFFloat::create(Node& owner)
{
    return new MFFloat(owner);
}

} // namespace Orvane

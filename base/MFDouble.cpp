#include "base/MFDouble.h"

namespace Orvane {

Field* MFDouble::create(Node& owner)
{
    return new MFDouble(owner);
}

} // namespace Orvane

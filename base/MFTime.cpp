#include "base/MFTime.h"

namespace Orvane {

Field* MFTime::create(Node& owner)
{
    return new MFTime(owner);
}

} // namespace Orvane

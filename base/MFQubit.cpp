#include "base/MFQubit.h"

namespace Orvane {

Field* MFQubit::create(Node& owner)
{
    return new MFQubit(owner);
}

} // namespace Orvane

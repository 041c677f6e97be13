#include "base/MFAny.h"

namespace Orvane {

Field* MFAny::create(Node& owner)
{
    return new MFAny(owner);
}

} // namespace Orvane

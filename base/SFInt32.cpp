#include "base/SFInt32.h"

namespace Orvane {

Field* SFInt32::create(Node& owner)
{
    return new SFInt32(owner);
}

} // namespace Orvane

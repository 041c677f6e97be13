#include "base/SFQubit.h"

namespace Orvane {

Field* SFQubit::create(Node& owner)
{
    return new SFQubit(owner);
}

} // namespace Orvane

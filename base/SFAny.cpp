#include "base/SFAny.h"

namespace Orvane {

Field* SFAny::create(Node& owner)
{
    return new SFAny(owner);
}

} // namespace Orvane

#include "base/SFDouble.h"

namespace Orvane {

Field* SFDouble::create(Node& owner)
{
    return new SFDouble(owner);
}

} // namespace Orvane

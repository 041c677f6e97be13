#include "base/SFTime.h"

namespace Orvane {

Field* SFTime::create(Node& owner)
{
    return new SFTime(owner);
}

} // namespace Orvane

#include "base/SFFloat.h"

namespace Orvane {

Field* SFFloat::create(Node& owner)
{
    return new SFFloat(owner);
}

} // namespace Orvane

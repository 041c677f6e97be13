#include "base/SFMatrix3f.h"

namespace Orvane {

Field* SFMatrix3f::create(Node& owner)
{
    return new SFMatrix3f(owner);
}

} // namespace Orvane

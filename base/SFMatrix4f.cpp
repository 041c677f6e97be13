#include "base/SFMatrix4f.h"

namespace Orvane {

Field* SFMatrix4f::create(Node& owner)
{
    return new SFMatrix4f(owner);
}

} // namespace Orvane

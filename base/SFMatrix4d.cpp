#include "base/SFMatrix4d.h"

namespace Orvane {

Field* SFMatrix4d::create(Node& owner)
{
    return new SFMatrix4d(owner);
}

} // namespace Orvane

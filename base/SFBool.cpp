#include "base/SFBool.h"

namespace Orvane {

Field* SFBool::create(Node& owner)
{
    return new SFBool(owner);
}

} // namespace Orvane

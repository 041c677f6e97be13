#include "base/SFColor.h"

namespace Orvane {

Field* SFColor::create(Node& owner)
{
    return new SFColor(owner);
}

} // namespace Orvane

#include "base/SFString.h"

namespace Orvane {

Field* SFString::create(Node& owner)
{
    return new SFString(owner);
}

} // namespace Orvane

#include "base/XFAny.h"

namespace Orvane {

Field* XFAny::create(Node& owner)
{
    return new XFAny(owner);
}

} // namespace Orvane

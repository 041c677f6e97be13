#include "base/SFColorRGBA.h"

namespace Orvane {

Field* SFColorRGBA::create(Node& owner)
{
    return new SFColorRGBA(owner);
}

} // namespace Orvane

#include "base/MFColorRGBA.h"

namespace Orvane {

Field* MFColorRGBA::create(Node& owner)
{
    return new MFColorRGBA(owner);
}

} // namespace Orvane

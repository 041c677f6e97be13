#include "base/SFImage.h"

namespace Orvane {

Field* SFImage::create(Node& owner)
{
    return new SFImage(owner);
}

} // namespace Orvane

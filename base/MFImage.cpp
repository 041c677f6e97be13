#include "base/MFImage.h"

namespace Orvane {

Field* MFImage::create(Node& owner)
{
    return new MFImage(owner);
}

const char* MFImage::addValueByStr(const char*, Cardinality)
{
    ORV_WARNING("Not impl. \n");
    return nullptr;
}

} // namespace Orvane

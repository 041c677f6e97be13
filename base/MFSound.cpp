#include "base/MFSound.h"

namespace Orvane {

Field* MFSound::create(Node& owner)
{
    return new MFSound(owner);
}

std::string& MFSound::getStrValue(std::string& out) const
{
    ORV_WARNING("Not impl. \n");
    out.clear();
    return out;
}

const char* MFSound::addValueByStr(const char*, Cardinality)
{
    ORV_WARNING("Not impl. \n");
    return nullptr;
}

void MFSound::setValueByStr(const char*)
{
    ORV_WARNING("In MFSound::setValueByStr(): not impl. \n");
}

} // namespace Orvane

#include "base/SFVec4f.h"

namespace Orvane {

Field* SFVec4f::create(Node& owner)
{
    return new SFVec4f(owner);
}

} // namespace Orvane

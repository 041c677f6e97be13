#include "base/SFVec2f.h"

namespace Orvane {

Field* SFVec2f::create(Node& owner)
{
    return new SFVec2f(owner);
}

} // namespace Orvane

#include "base/SFSound.h"

namespace Orvane {

Field* SFSound::create(Node& owner)
{
    return new SFSound(owner);
}

} // namespace Orvane

#include "base/BaseObject.h"

namespace Orvane {

std::atomic<std::uint32_t> BaseObject::_objCount{0};

} // namespace Orvane

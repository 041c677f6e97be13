#include "base/Color4f.h"

#include <type_traits>

namespace Orvane {

static_assert(std::is_trivially_copyable_v<Color4f> && std::is_standard_layout_v<Color4f>);

} // namespace Orvane

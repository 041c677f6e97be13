#include "base/Color3f.h"

#include <type_traits>

namespace Orvane {

// Stored by value in vectors of fields and sent through events by copy: keep it trivial.
static_assert(std::is_trivially_copyable_v<Color3f> && std::is_standard_layout_v<Color3f>);

} // namespace Orvane

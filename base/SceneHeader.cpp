#include "base/SceneHeader.h"

#include <string_view>

namespace Orvane {

const char* SceneHeader::x3dVersion(bool xml) const
{
    if (encoding != "X3D" || version.empty())
        return defaultVersion;
    if (!xml)
        return version.c_str();
    for (std::string_view known : {"3.0", "3.1", "3.2", "3.3", "4.0"})
        if (version == known)
            return version.c_str();
    return defaultVersion;
}

} // namespace Orvane

#ifndef ORVANE_BASE_SCENEHEADER_H
#define ORVANE_BASE_SCENEHEADER_H

#include "base/OrvaneExport.h"

#include <string>
#include <utility>
#include <vector>

namespace Orvane {

// What a scene file says about itself besides its nodes: its encoding and version, and the
// PROFILE, COMPONENT, UNIT and META statements of an X3D scene. Readers fill it; the X3D
// writers write it back, so that a scene keeps its own statements through a conversion.
struct ORVANE_API SceneHeader {
    std::string encoding;  // "VRML" or "X3D"; empty for a scene built in code
    std::string version;   // "2.0", "3.3", ...
    std::string charset;   // "utf8"
    std::string profile;
    std::vector<std::pair<std::string, int>>         components;  // name, level
    std::vector<std::vector<std::string>>            units;       // category, name, factor
    std::vector<std::pair<std::string, std::string>> meta;        // name, content

    // What a scene that says nothing is written as: a VRML97 world or a scene built in code
    // needs the nodes of the Immersive profile, the X3D counterpart of VRML97.
    static constexpr const char* defaultProfile = "Immersive";
    static constexpr const char* defaultVersion = "4.0";

    const char* x3dProfile() const { return profile.empty() ? defaultProfile : profile.c_str(); }
    // The scene's own version when it is an X3D scene; else the default. With `xml`, only the
    // versions that the XML encoding's schema knows (3.0 to 4.0).
    const char* x3dVersion(bool xml) const;
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_COLOR3F_H
#define ORVANE_BASE_COLOR3F_H

#include "base/MathTypes.h"
#include "base/OrvaneExport.h"

namespace Orvane {

// An RGB colour. A type of its own rather than a Vec3f, so that colour and vector fields
// are different types.
class ORVANE_API Color3f {
public:
    using value_type = float;

    constexpr Color3f() = default;
    constexpr Color3f(float red, float green, float blue) : r(red), g(green), b(blue) {}

    static constexpr int size() { return 3; }

    // The components lie one after the other, like those of a GLM vector.
    float*       data() { return &r; }
    const float* data() const { return &r; }

    float& operator[](int i) { return i == 0 ? r : i == 1 ? g : b; }
    float  operator[](int i) const { return i == 0 ? r : i == 1 ? g : b; }

    bool operator==(const Color3f&) const = default;

    Vec3f          toVec3f() const { return Vec3f(r, g, b); }
    static Color3f fromVec3f(const Vec3f& v) { return Color3f(v.x, v.y, v.z); }

    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
};

static_assert(sizeof(Color3f) == 3 * sizeof(float));

inline float*       valuePtr(Color3f& c) { return c.data(); }
inline const float* valuePtr(const Color3f& c) { return c.data(); }

} // namespace Orvane

#endif

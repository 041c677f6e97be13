#ifndef ORVANE_BASE_COLOR4F_H
#define ORVANE_BASE_COLOR4F_H

#include "base/Color3f.h"
#include "base/MathTypes.h"
#include "base/OrvaneExport.h"

namespace Orvane {

// An RGBA colour; like Color3f, distinct from the vector of the same size.
class ORVANE_API Color4f {
public:
    using value_type = float;

    constexpr Color4f() = default;
    constexpr Color4f(float red, float green, float blue, float alpha) : r(red), g(green), b(blue), a(alpha) {}

    static constexpr int size() { return 4; }

    float*       data() { return &r; }
    const float* data() const { return &r; }

    float& operator[](int i) { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }
    float  operator[](int i) const { return i == 0 ? r : i == 1 ? g : i == 2 ? b : a; }

    bool operator==(const Color4f&) const = default;

    Vec4f          toVec4f() const { return Vec4f(r, g, b, a); }
    static Color4f fromVec4f(const Vec4f& v) { return Color4f(v.x, v.y, v.z, v.w); }

    Color3f        rgb() const { return Color3f(r, g, b); }
    static Color4f fromColor3f(const Color3f& c, float alpha = 1.0f) { return Color4f(c.r, c.g, c.b, alpha); }

    float r = 0.0f;
    float g = 0.0f;
    float b = 0.0f;
    float a = 0.0f;
};

static_assert(sizeof(Color4f) == 4 * sizeof(float));

inline float*       valuePtr(Color4f& c) { return c.data(); }
inline const float* valuePtr(const Color4f& c) { return c.data(); }

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_COMPONENTS_H
#define ORVANE_BASE_COMPONENTS_H

#include "base/Color3f.h"
#include "base/Color4f.h"
#include "base/MathTypes.h"
#include "base/Plane.h"
#include "base/Rotation.h"

namespace Orvane {

// The scalar components of a numeric value type, by index: what the text and binary forms and
// the conversions walk over. Matrices list their elements in storage order (column by column).
template <class T>
struct Components;

template <class S>
struct ScalarComponents {
    using Scalar = S;
    static constexpr unsigned count = 1;
    static S    get(const S& v, unsigned) { return v; }
    static void set(S& v, unsigned, S s) { v = s; }
};
template <> struct Components<float> : ScalarComponents<float> {};
template <> struct Components<double> : ScalarComponents<double> {};
template <> struct Components<int> : ScalarComponents<int> {};

template <glm::length_t L, class S, glm::qualifier Q>
struct Components<glm::vec<L, S, Q>> {
    using Scalar = S;
    static constexpr unsigned count = L;
    static S    get(const glm::vec<L, S, Q>& v, unsigned i) { return v[static_cast<glm::length_t>(i)]; }
    static void set(glm::vec<L, S, Q>& v, unsigned i, S s) { v[static_cast<glm::length_t>(i)] = s; }
};

template <glm::length_t C, glm::length_t R, class S, glm::qualifier Q>
struct Components<glm::mat<C, R, S, Q>> {
    using Scalar = S;
    static constexpr unsigned count = C * R;
    static S    get(const glm::mat<C, R, S, Q>& m, unsigned i) { return m[i / R][i % R]; }
    static void set(glm::mat<C, R, S, Q>& m, unsigned i, S s) { m[i / R][i % R] = s; }
};

// Colours and planes index their components directly.
template <class T, unsigned N>
struct IndexedComponents {
    using Scalar = float;
    static constexpr unsigned count = N;
    static float get(const T& v, unsigned i) { return v[static_cast<int>(i)]; }
    static void  set(T& v, unsigned i, float s) { v[static_cast<int>(i)] = s; }
};
template <> struct Components<Color3f> : IndexedComponents<Color3f, 3> {};
template <> struct Components<Color4f> : IndexedComponents<Color4f, 4> {};
template <> struct Components<Plane> : IndexedComponents<Plane, 4> {};

// A rotation reads as axis x, y, z and angle, brought up to date from a quaternion first.
template <>
struct Components<Rotation> {
    using Scalar = float;
    static constexpr unsigned count = 4;
    static float get(const Rotation& r, unsigned i) { return r[static_cast<int>(i)]; }
    static void  set(Rotation& r, unsigned i, float s) { r.setComponent(static_cast<int>(i), s); }
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_MATHTYPES_H
#define ORVANE_BASE_MATHTYPES_H

#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>

namespace Orvane {

// The vector and matrix element types of the fields, under the names the field classes use.
using Vec2f = glm::vec2;
using Vec2d = glm::dvec2;
using Vec3f = glm::vec3;
using Vec3d = glm::dvec3;
using Vec4f = glm::vec4;
using Vec4d = glm::dvec4;
using Matrix3f = glm::mat3;
using Matrix3d = glm::dmat3;
using Matrix4f = glm::mat4;
using Matrix4d = glm::dmat4;

// Text and binary forms walk the scalars of a value in storage order (matrices column by
// column), so they need the types tightly packed: no aligned or SIMD layout of GLM.
static_assert(sizeof(Vec3f) == 3 * sizeof(float) && sizeof(Vec3d) == 3 * sizeof(double));
static_assert(sizeof(Matrix3f) == 9 * sizeof(float) && sizeof(Matrix4d) == 16 * sizeof(double));

// Pointer to the first scalar of a vector or matrix (const for a const value).
template <typename T>
inline auto valuePtr(T& value)
{
    return glm::value_ptr(value);
}

// Number of scalars in a vector or matrix (also in Color3f and Color4f).
template <typename T>
inline constexpr int componentCount = int(sizeof(T) / sizeof(typename T::value_type));

} // namespace Orvane

#endif

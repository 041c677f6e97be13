#ifndef ORVANE_BASE_PLANE_H
#define ORVANE_BASE_PLANE_H

#include "base/MathTypes.h"
#include "base/OrvaneExport.h"

namespace Orvane {

// The plane of the points p with dot(normal, p) == distance. The normal is kept as given
// (not normalised), so that a value read from text is written back unchanged.
class ORVANE_API Plane {
public:
    using value_type = float;

    Plane() = default;  // normal (0,0,1), distance 0
    Plane(const Vec3f& normal, float distance) : _normal(normal), _distance(distance) {}
    Plane(float nx, float ny, float nz, float distance) : _normal(nx, ny, nz), _distance(distance) {}

    static constexpr int size() { return 4; }

    const Vec3f& normal() const { return _normal; }
    float        distance() const { return _distance; }
    void         setNormal(const Vec3f& normal) { _normal = normal; }
    void         setDistance(float distance) { _distance = distance; }

    // Components in text and binary order: nx, ny, nz, distance.
    float& operator[](int i) { return i < 3 ? _normal[i] : _distance; }
    float  operator[](int i) const { return i < 3 ? _normal[i] : _distance; }

    bool operator==(const Plane&) const = default;

    // Signed distance of a point from the plane, in units of the normal's length.
    float distanceTo(const Vec3f& point) const;

private:
    Vec3f _normal{0.0f, 0.0f, 1.0f};
    float _distance = 0.0f;
};

} // namespace Orvane

#endif

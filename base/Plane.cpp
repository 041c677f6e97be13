#include "base/Plane.h"

namespace Orvane {

float Plane::distanceTo(const Vec3f& point) const
{
    return glm::dot(_normal, point) - _distance;
}

} // namespace Orvane

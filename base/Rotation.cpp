#include "base/Rotation.h"

#include <cmath>
#include <numbers>

namespace Orvane {

void Rotation::setAxisAngle(const Vec3f& axis, float angle)
{
    _axis = axis;
    _angle = angle;
    _axisAngleStale = false;
    _fromQuaternion = false;
}

void Rotation::setAxis(const Vec3f& axis)
{
    setAxisAngle(axis, this->angle());
}

void Rotation::setAngle(float angle)
{
    setAxisAngle(this->axis(), angle);
}

void Rotation::setQuaternion(const glm::quat& q)
{
    _quat = q;
    _fromQuaternion = true;
    _axisAngleStale = true;
}

void Rotation::updateAxisAngle() const
{
    if (!_axisAngleStale)
        return;
    _axisAngleStale = false;

    // atan2 needs no normalised quaternion and stays accurate near 0 and 180 degrees,
    // where acos(w) does not. Double precision keeps float inputs exact enough.
    double x = _quat.x, y = _quat.y, z = _quat.z, w = _quat.w;
    double s = std::sqrt(x * x + y * y + z * z);
    if (!std::isfinite(s) || !std::isfinite(w)) {
        _axis = Vec3f(0.0f, 0.0f, 1.0f);
        _angle = 0.0f;
        return;
    }
    if (s == 0.0) {
        // No axis: the identity (or a full turn for w < 0); keep the default axis.
        _axis = Vec3f(0.0f, 0.0f, 1.0f);
        _angle = w < 0.0 ? float(2.0 * std::numbers::pi) : 0.0f;
        return;
    }
    _axis = Vec3f(float(x / s), float(y / s), float(z / s));
    _angle = float(2.0 * std::atan2(s, w));
}

const Vec3f& Rotation::axis() const
{
    updateAxisAngle();
    return _axis;
}

float Rotation::angle() const
{
    updateAxisAngle();
    return _angle;
}

glm::quat Rotation::quaternion() const
{
    if (_fromQuaternion)
        return _quat;
    float len = glm::length(_axis);
    if (!(len > 0.0f) || !std::isfinite(len))
        return glm::quat(1.0f, 0.0f, 0.0f, 0.0f);
    return glm::angleAxis(_angle, _axis / len);
}

float Rotation::operator[](int i) const
{
    updateAxisAngle();
    return i < 3 ? _axis[i] : _angle;
}

void Rotation::setComponent(int i, float value)
{
    updateAxisAngle();
    if (i < 3)
        _axis[i] = value;
    else
        _angle = value;
    _fromQuaternion = false;
}

bool Rotation::operator==(const Rotation& other) const
{
    return axis() == other.axis() && angle() == other.angle();
}

} // namespace Orvane

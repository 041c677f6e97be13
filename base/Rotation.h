#ifndef ORVANE_BASE_ROTATION_H
#define ORVANE_BASE_ROTATION_H

#include "base/MathTypes.h"
#include "base/OrvaneExport.h"

#include <glm/gtc/quaternion.hpp>

namespace Orvane {

// A rotation by an angle (radians) about an axis, as X3D writes it, or as a quaternion.
// Whichever form was set last is the value. When that was the quaternion, the axis and angle
// are derived from it only when somebody asks for them (text and binary forms, comparisons),
// since animation code sets quaternions far more often than anything reads the axis.
// The derived members are mutable; like the rest of a scene, a Rotation belongs to one thread.
class ORVANE_API Rotation {
public:
    using value_type = float;

    Rotation() = default;  // axis (0,0,1), angle 0
    Rotation(const Vec3f& axis, float angle) : _axis(axis), _angle(angle) {}
    Rotation(float x, float y, float z, float angle) : _axis(x, y, z), _angle(angle) {}
    explicit Rotation(const glm::quat& q) { setQuaternion(q); }

    static constexpr int size() { return 4; }

    void setAxisAngle(const Vec3f& axis, float angle);
    void setAxis(const Vec3f& axis);
    void setAngle(float angle);
    void setQuaternion(const glm::quat& q);

    const Vec3f& axis() const;
    float        angle() const;
    // The last quaternion set, or the quaternion of the axis and angle (normalised axis;
    // identity for a zero axis).
    glm::quat quaternion() const;

    // True while the quaternion is the form last set.
    bool isQuaternion() const { return _fromQuaternion; }
    // Brings axis and angle up to date from the quaternion if they are stale.
    void updateAxisAngle() const;

    // Components in text and binary order: axis x, y, z, angle. Setting one makes the
    // axis and angle the value again.
    float operator[](int i) const;
    void  setComponent(int i, float value);

    // Compares axis and angle exactly (after bringing them up to date), so two rotations
    // that turn alike but are written differently are different values, as in a file.
    bool operator==(const Rotation& other) const;

private:
    mutable Vec3f _axis{0.0f, 0.0f, 1.0f};
    mutable float _angle = 0.0f;
    mutable bool  _axisAngleStale = false;  // quaternion set, axis and angle not yet derived
    bool          _fromQuaternion = false;
    glm::quat     _quat{1.0f, 0.0f, 0.0f, 0.0f};
};

} // namespace Orvane

#endif

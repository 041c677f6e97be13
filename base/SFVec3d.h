#ifndef ORVANE_BASE_SFVEC3D_H
#define ORVANE_BASE_SFVEC3D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFVec3d : public TypedSField<SFVec3d, Vec3d> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFVec3dType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_MFVEC3D_H
#define ORVANE_BASE_MFVEC3D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFVec3d : public TypedMField<MFVec3d, Vec3d, MVField<Vec3d>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFVec3dType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

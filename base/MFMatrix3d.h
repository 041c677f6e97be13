#ifndef ORVANE_BASE_MFMATRIX3D_H
#define ORVANE_BASE_MFMATRIX3D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFMatrix3d : public TypedMField<MFMatrix3d, Matrix3d, MVField<Matrix3d>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFMatrix3dType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

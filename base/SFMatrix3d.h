#ifndef ORVANE_BASE_SFMATRIX3D_H
#define ORVANE_BASE_SFMATRIX3D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFMatrix3d : public TypedSField<SFMatrix3d, Matrix3d> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFMatrix3dType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

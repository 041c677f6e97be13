#ifndef ORVANE_BASE_MFMATRIX4D_H
#define ORVANE_BASE_MFMATRIX4D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFMatrix4d : public TypedMField<MFMatrix4d, Matrix4d, MVField<Matrix4d>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFMatrix4dType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

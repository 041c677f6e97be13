#ifndef ORVANE_BASE_MFMATRIX3F_H
#define ORVANE_BASE_MFMATRIX3F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFMatrix3f : public TypedMField<MFMatrix3f, Matrix3f, MVField<Matrix3f>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFMatrix3fType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

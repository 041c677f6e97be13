#ifndef ORVANE_BASE_MFMATRIX4F_H
#define ORVANE_BASE_MFMATRIX4F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFMatrix4f : public TypedMField<MFMatrix4f, Matrix4f, MVField<Matrix4f>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFMatrix4fType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_MFVEC4F_H
#define ORVANE_BASE_MFVEC4F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFVec4f : public TypedMField<MFVec4f, Vec4f, MVField<Vec4f>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFVec4fType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

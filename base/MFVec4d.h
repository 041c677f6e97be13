#ifndef ORVANE_BASE_MFVEC4D_H
#define ORVANE_BASE_MFVEC4D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFVec4d : public TypedMField<MFVec4d, Vec4d, MVField<Vec4d>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFVec4dType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

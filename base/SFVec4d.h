#ifndef ORVANE_BASE_SFVEC4D_H
#define ORVANE_BASE_SFVEC4D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFVec4d : public TypedSField<SFVec4d, Vec4d> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFVec4dType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_SFMATRIX3F_H
#define ORVANE_BASE_SFMATRIX3F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFMatrix3f : public TypedSField<SFMatrix3f, Matrix3f> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFMatrix3fType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

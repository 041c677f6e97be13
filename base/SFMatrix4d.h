#ifndef ORVANE_BASE_SFMATRIX4D_H
#define ORVANE_BASE_SFMATRIX4D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFMatrix4d : public TypedSField<SFMatrix4d, Matrix4d> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFMatrix4dType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

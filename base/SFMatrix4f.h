#ifndef ORVANE_BASE_SFMATRIX4F_H
#define ORVANE_BASE_SFMATRIX4F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFMatrix4f : public TypedSField<SFMatrix4f, Matrix4f> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFMatrix4fType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_SFVEC4F_H
#define ORVANE_BASE_SFVEC4F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFVec4f : public TypedSField<SFVec4f, Vec4f> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFVec4fType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

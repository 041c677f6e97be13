#ifndef ORVANE_BASE_SFVEC2F_H
#define ORVANE_BASE_SFVEC2F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFVec2f : public TypedSField<SFVec2f, Vec2f> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFVec2fType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_SFVEC2D_H
#define ORVANE_BASE_SFVEC2D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFVec2d : public TypedSField<SFVec2d, Vec2d> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFVec2dType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_MFVEC2D_H
#define ORVANE_BASE_MFVEC2D_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFVec2d : public TypedMField<MFVec2d, Vec2d, MVField<Vec2d>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFVec2dType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_MFVEC2F_H
#define ORVANE_BASE_MFVEC2F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFVec2f : public TypedMField<MFVec2f, Vec2f, MVField<Vec2f>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFVec2fType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

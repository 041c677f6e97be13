#ifndef ORVANE_BASE_MFVEC3F_H
#define ORVANE_BASE_MFVEC3F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFVec3f : public TypedMField<MFVec3f, Vec3f, MVField<Vec3f>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFVec3fType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

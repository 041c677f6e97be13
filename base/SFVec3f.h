#ifndef ORVANE_BASE_SFVEC3F_H
#define ORVANE_BASE_SFVEC3F_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFVec3f : public TypedSField<SFVec3f, Vec3f> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFVec3fType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

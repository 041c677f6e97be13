#ifndef ORVANE_BASE_SFPLANE_H
#define ORVANE_BASE_SFPLANE_H

#include "base/TypedField.h"
#include "base/Plane.h"

namespace Orvane {

class ORVANE_API SFPlane : public TypedSField<SFPlane, Plane> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFPlaneType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

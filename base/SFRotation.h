#ifndef ORVANE_BASE_SFROTATION_H
#define ORVANE_BASE_SFROTATION_H

#include "base/TypedField.h"
#include "base/Rotation.h"

namespace Orvane {

class ORVANE_API SFRotation : public TypedSField<SFRotation, Rotation> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFRotationType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

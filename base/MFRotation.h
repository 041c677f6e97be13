#ifndef ORVANE_BASE_MFROTATION_H
#define ORVANE_BASE_MFROTATION_H

#include "base/TypedField.h"
#include "base/Rotation.h"

namespace Orvane {

class ORVANE_API MFRotation : public TypedMField<MFRotation, Rotation, MVField<Rotation>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFRotationType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

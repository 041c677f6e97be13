#ifndef ORVANE_BASE_MFFLOAT_H
#define ORVANE_BASE_MFFLOAT_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFFloat : public TypedMField<MFFloat, float, MVField<float>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFFloatType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

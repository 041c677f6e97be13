#ifndef ORVANE_BASE_SFFLOAT_H
#define ORVANE_BASE_SFFLOAT_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFFloat : public TypedSField<SFFloat, float> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFFloatType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

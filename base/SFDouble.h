#ifndef ORVANE_BASE_SFDOUBLE_H
#define ORVANE_BASE_SFDOUBLE_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFDouble : public TypedSField<SFDouble, double> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFDoubleType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_MFDOUBLE_H
#define ORVANE_BASE_MFDOUBLE_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFDouble : public TypedMField<MFDouble, double, MVField<double>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFDoubleType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_MFTIME_H
#define ORVANE_BASE_MFTIME_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFTime : public TypedMField<MFTime, double, MVField<double>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFTimeType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_SFTIME_H
#define ORVANE_BASE_SFTIME_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFTime : public TypedSField<SFTime, double> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFTimeType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

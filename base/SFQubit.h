#ifndef ORVANE_BASE_SFQUBIT_H
#define ORVANE_BASE_SFQUBIT_H

#include "base/TypedField.h"
#include "base/Qubit.h"

namespace Orvane {

class ORVANE_API SFQubit : public TypedSField<SFQubit, Qubit> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFQubitType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

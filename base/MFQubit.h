#ifndef ORVANE_BASE_MFQUBIT_H
#define ORVANE_BASE_MFQUBIT_H

#include "base/TypedField.h"
#include "base/Qubit.h"

namespace Orvane {

// Reads whole values and complete elements, but no fragment of a larger value.
class ORVANE_API MFQubit : public TypedMField<MFQubit, Qubit, MLField<Qubit>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFQubitType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

    const char* addValueByStr(const char* text, Cardinality cardinality) override
    {
        return addCompleteValueByStr(text, cardinality);
    }

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_MFBOOL_H
#define ORVANE_BASE_MFBOOL_H

#include "base/TypedField.h"

namespace Orvane {

// Reads whole values and complete elements, but no fragment of a larger value.
class ORVANE_API MFBool : public TypedMField<MFBool, bool, MLField<bool>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFBoolType;
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

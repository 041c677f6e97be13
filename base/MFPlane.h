#ifndef ORVANE_BASE_MFPLANE_H
#define ORVANE_BASE_MFPLANE_H

#include "base/TypedField.h"
#include "base/Plane.h"

namespace Orvane {

// Reads whole values and complete elements, but no fragment of a larger value.
class ORVANE_API MFPlane : public TypedMField<MFPlane, Plane, MVField<Plane>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFPlaneType;
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

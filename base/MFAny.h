#ifndef ORVANE_BASE_MFANY_H
#define ORVANE_BASE_MFANY_H

#include "base/TypedField.h"

namespace Orvane {

// Holds opaque pointers; there is no text form.
class ORVANE_API MFAny : public OpaqueField<MFAny, MVField<void*>> {
public:
    using OpaqueField::OpaqueField;
    static constexpr NodePartDataType DataType = MFAnyType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

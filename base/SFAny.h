#ifndef ORVANE_BASE_SFANY_H
#define ORVANE_BASE_SFANY_H

#include "base/TypedField.h"

namespace Orvane {

// Holds an opaque pointer; there is no text form.
class ORVANE_API SFAny : public OpaqueField<SFAny, SField<void*>> {
public:
    using OpaqueField::OpaqueField;
    static constexpr NodePartDataType DataType = SFAnyType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_XFANY_H
#define ORVANE_BASE_XFANY_H

#include "base/TypedField.h"

namespace Orvane {

// The value of an event that carries none.
struct NoValue {
    bool operator==(const NoValue&) const = default;
};

// Holds nothing: an event without a value; there is no text form.
class ORVANE_API XFAny : public OpaqueField<XFAny, SField<NoValue>> {
public:
    using OpaqueField::OpaqueField;
    static constexpr NodePartDataType DataType = XFAnyType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

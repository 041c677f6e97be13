#ifndef ORVANE_BASE_SFBOOL_H
#define ORVANE_BASE_SFBOOL_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFBool : public TypedSField<SFBool, bool> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFBoolType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

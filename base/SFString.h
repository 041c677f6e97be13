#ifndef ORVANE_BASE_SFSTRING_H
#define ORVANE_BASE_SFSTRING_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFString : public TypedSField<SFString, std::string> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFStringType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

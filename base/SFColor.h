#ifndef ORVANE_BASE_SFCOLOR_H
#define ORVANE_BASE_SFCOLOR_H

#include "base/TypedField.h"
#include "base/Color3f.h"

namespace Orvane {

class ORVANE_API SFColor : public TypedSField<SFColor, Color3f> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFColorType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

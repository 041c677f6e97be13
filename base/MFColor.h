#ifndef ORVANE_BASE_MFCOLOR_H
#define ORVANE_BASE_MFCOLOR_H

#include "base/TypedField.h"
#include "base/Color3f.h"

namespace Orvane {

class ORVANE_API MFColor : public TypedMField<MFColor, Color3f, MVField<Color3f>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFColorType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_SFCOLORRGBA_H
#define ORVANE_BASE_SFCOLORRGBA_H

#include "base/TypedField.h"
#include "base/Color4f.h"

namespace Orvane {

class ORVANE_API SFColorRGBA : public TypedSField<SFColorRGBA, Color4f> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFColorRGBAType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

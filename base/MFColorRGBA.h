#ifndef ORVANE_BASE_MFCOLORRGBA_H
#define ORVANE_BASE_MFCOLORRGBA_H

#include "base/TypedField.h"
#include "base/Color4f.h"

namespace Orvane {

class ORVANE_API MFColorRGBA : public TypedMField<MFColorRGBA, Color4f, MVField<Color4f>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFColorRGBAType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

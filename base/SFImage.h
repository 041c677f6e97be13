#ifndef ORVANE_BASE_SFIMAGE_H
#define ORVANE_BASE_SFIMAGE_H

#include "base/TypedField.h"
#include "base/Image.h"

namespace Orvane {

class ORVANE_API SFImage : public TypedSField<SFImage, Image> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFImageType;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

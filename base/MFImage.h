#ifndef ORVANE_BASE_MFIMAGE_H
#define ORVANE_BASE_MFIMAGE_H

#include "base/Image.h"
#include "base/TypedField.h"

namespace Orvane {

// Images are read as whole values only.
class ORVANE_API MFImage : public TypedMField<MFImage, Image, MLField<Image>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFImageType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

    const char* addValueByStr(const char* text, Cardinality cardinality) override;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

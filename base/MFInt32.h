#ifndef ORVANE_BASE_MFINT32_H
#define ORVANE_BASE_MFINT32_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API MFInt32 : public TypedMField<MFInt32, int, MVField<int>> {
public:
    using TypedMField::TypedMField;
    static constexpr NodePartDataType DataType = MFInt32Type;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

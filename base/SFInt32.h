#ifndef ORVANE_BASE_SFINT32_H
#define ORVANE_BASE_SFINT32_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFInt32 : public TypedSField<SFInt32, int> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFInt32Type;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

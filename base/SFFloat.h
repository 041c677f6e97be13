#ifndef ORVANE_BASE_SFFLOAT_H
#define ORVANE_BASE_SFFLOAT_H

#include "base/TypedField.h"

namespace Orvane {

class ORVANE_API SFFloat : public TypedSField<SFFloat, float> {
public:
    using TypedSField::TypedSField;
    using Field::setAndValidateValueByStr;
    static constexpr NodePartDataType DataType = SFFloatType;

protected:
    // With the flag set, the text must be one finite float with nothing but blanks around
    // it; other text is refused (false) and the value stays. Without the flag, the text is
    // read as setValueByStr reads it.
    bool setAndValidateValueByStr(const char* text, bool validate) override;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

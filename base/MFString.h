#ifndef ORVANE_BASE_MFSTRING_H
#define ORVANE_BASE_MFSTRING_H

#include "base/TypedField.h"

namespace Orvane {

// Elements are written quoted and escaped, one blank between them; read as quoted runs.
class ORVANE_API MFString : public TypedMField<MFString, std::string, MLField<std::string>> {
public:
    using TypedMField::TypedMField;
    using Field::setValueByStr;
    static constexpr NodePartDataType DataType = MFStringType;

    std::string& getStrValue(std::string& out) const override;
    const char*  addValueByStr(const char* text, Cardinality cardinality) override;

protected:
    void setValueByStr(const char* text) override;

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

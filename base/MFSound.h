#ifndef ORVANE_BASE_MFSOUND_H
#define ORVANE_BASE_MFSOUND_H

#include "base/PCMSound.h"
#include "base/XField.h"
#include "base/TypedField.h"

namespace Orvane {

// Sounds have no text form as a list.
class ORVANE_API MFSound : public TypedField<MFSound, MLField<PCMSound>> {
public:
    using TypedField::TypedField;
    MFSound(Node& owner, const MFSound& other) : TypedField(owner, other.value()) {}
    using Field::setValueByStr;
    static constexpr NodePartDataType DataType = MFSoundType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

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

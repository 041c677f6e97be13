#ifndef ORVANE_BASE_SFSOUND_H
#define ORVANE_BASE_SFSOUND_H

#include "base/TypedField.h"
#include "base/PCMSound.h"

namespace Orvane {

class ORVANE_API SFSound : public TypedSField<SFSound, PCMSound> {
public:
    using TypedSField::TypedSField;
    static constexpr NodePartDataType DataType = SFSoundType;
    static constexpr bool binaryForm = false;  // no binary form, on purpose

private:
    friend class BuiltinFieldTypes;
    static Field* create(Node& owner);
};

} // namespace Orvane

#endif

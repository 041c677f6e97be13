#include "base/NodeLayout.h"

#include "base/FieldType.h"

namespace Orvane {

NodeLayout::~NodeLayout()
{
    void** values = _defaults.load(std::memory_order_acquire);
    if (!values)
        return;
    for (std::size_t i = 0; i < fieldTypes.size(); ++i)
        if (values[i])
            fieldTypes[i]->defaultValueMethods().destroy(values[i]);
    delete[] values;
}

bool NodeLayout::sameAs(const NodeLayout& other) const
{
    return fieldOffsets == other.fieldOffsets && fieldTypes == other.fieldTypes &&
           defaultTexts == other.defaultTexts && slotDescs == other.slotDescs && procOffset == other.procOffset && areaSize == other.areaSize &&
           areaAlign == other.areaAlign && onDemand == other.onDemand && placesAll == other.placesAll;
}

const void* const* NodeLayout::defaultValues(Node& owner) const
{
    if (void** values = _defaults.load(std::memory_order_acquire))
        return values;
    const std::size_t count = fieldTypes.size();
    void** made = new void*[count ? count : 1]();
    for (std::size_t i = 0; i < count; ++i) {
        const FieldType* type = fieldTypes[i];
        if (type && type->defaultValueMethods().make && !defaultTexts[i].empty())
            made[i] = type->defaultValueMethods().make(owner, defaultTexts[i].c_str());
    }
    // Nodes of the type made at the same time on other threads may have read them too; the
    // first set wins.
    void** expected = nullptr;
    if (_defaults.compare_exchange_strong(expected, made, std::memory_order_acq_rel))
        return made;
    for (std::size_t i = 0; i < count; ++i)
        if (made[i])
            fieldTypes[i]->defaultValueMethods().destroy(made[i]);
    delete[] made;
    return expected;
}

} // namespace Orvane

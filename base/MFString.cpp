#include "base/MFString.h"

#include "base/Node.h"
#include "base/NodeType.h"

namespace Orvane {

Field* MFString::create(Node& owner)
{
    return new MFString(owner);
}

std::string& MFString::getStrValue(std::string& out) const
{
    out.clear();
    writeList<std::string>(out, _value, " ");
    return out;
}

void MFString::setValueByStr(const char* text)
{
    _value.clear();
    if (text)
        ValueText<std::string>::readList(text, textEnd(text), _value);
}

const char* MFString::addValueByStr(const char* text, Cardinality cardinality)
{
    if (!text)
        return nullptr;
    if (cardinality == Multi) {
        ORV_FATAL("%s.%s %s::addValueByStr() for partial data not impl. \n >%s<\n", owner().type().name().c_str(),
                  nameOrNoName(), dataTypeName().c_str(), text);
        return nullptr;
    }
    const char* last = textEnd(text);
    const char* p = text;
    while (p < last && *p != '"' && *p != '\'' && NumberText::isSeparator(*p, " \t\n\r"))
        ++p;
    if (p == last || (*p != '"' && *p != '\'')) {
        // An unquoted run is one element as it stands.
        _value.emplace_back(text, last);
        return nullptr;
    }
    std::string element;
    const char* end = ValueText<std::string>::readOne(p, last, element);
    _value.push_back(std::move(element));
    return end < last ? end : nullptr;
}

} // namespace Orvane

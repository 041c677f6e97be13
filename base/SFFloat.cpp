#include "base/SFFloat.h"

#include "base/Log.h"
#include "base/Node.h"
#include "base/NodeType.h"
#include "base/NumberText.h"

#include <cmath>

namespace Orvane {

Field* SFFloat::create(Node& owner)
{
    return new SFFloat(owner);
}

bool SFFloat::setAndValidateValueByStr(const char* text, bool validate)
{
    if (validate) {
        const char* p = text ? text : "";
        const char* end = p;
        float value = NumberText::toFloat(NumberText::parseDouble(p, &end));
        bool valid = end != p && std::isfinite(value);
        for (; valid && *end; ++end)
            valid = *end == ' ' || *end == '\t' || *end == '\n' || *end == '\r';
        if (!valid) {
            ORV_WARNING("%s.%s: invalid float value >%s<\n", owner().type().name().c_str(), nameOrNoName(), p);
            return false;
        }
    }
    setValueByStr(text);
    return true;
}

} // namespace Orvane

#include "base/NameText.h"

namespace Orvane {

std::string NameText::trim(const std::string& text)
{
    static const char* const blanks = " \t\r\n";
    auto first = text.find_first_not_of(blanks);
    if (first == std::string::npos)
        return std::string();
    auto last = text.find_last_not_of(blanks);
    return text.substr(first, last - first + 1);
}

std::string NameText::toLower(std::string text)
{
    for (char& c : text)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return text;
}

} // namespace Orvane

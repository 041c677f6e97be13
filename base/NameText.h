#ifndef ORVANE_BASE_NAMETEXT_H
#define ORVANE_BASE_NAMETEXT_H

#include "base/OrvaneExport.h"

#include <string>

namespace Orvane {

// The small text operations on names and addresses that the scopes share.
class ORVANE_API NameText {
public:
    // Without blanks, tabs, carriage returns and line feeds at either end.
    static std::string trim(const std::string& text);
    // Lower case, byte by byte in the "C" locale.
    static std::string toLower(std::string text);
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_NUMBERTEXT_H
#define ORVANE_BASE_NUMBERTEXT_H

#include "base/OrvaneExport.h"

#include <charconv>
#include <cstring>
#include <string>

namespace Orvane {

// Numbers to and from text, independent of the process locale. Parsing has the semantics of
// strtod/strtol in the "C" locale (leading blanks, sign, exponent, hexadecimal, inf and nan,
// out-of-range numbers); formatting matches printf's "%g", "%.16g", "%f" and "%d".
class ORVANE_API NumberText {
public:
    // Reads a double from [p, last) the way strtod reads it from a NUL-terminated text; *end is
    // p when no number was found.
    static double parseDouble(const char* p, const char* last, const char** end)
    {
        double value = 0.0;
        if (p < last && startsPlainNumber(*p)) {
            auto [ptr, ec] = std::from_chars(p, last, value);
            if (ec == std::errc() && (ptr == last || (*ptr != 'x' && *ptr != 'X'))) {
                *end = ptr;
                return value;
            }
        }
        return strtodSlow(p, last, end);
    }
    static double parseDouble(const char* p, const char** end) { return parseDouble(p, p + std::strlen(p), end); }

    // Reads an int the way atoi does (the value of strtol, narrowed).
    static int parseInt(const char* p, const char* last, const char** end);
    static int parseInt(const char* p, const char** end) { return parseInt(p, p + std::strlen(p), end); }

    // A double narrowed to float with IEEE rounding, overflow giving infinity.
    static float toFloat(double value);

    // printf("%.*g", precision, value)
    static void appendGeneral(std::string& out, double value, int precision = 6)
    {
        char buffer[64];
        auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general,
                                       precision);
        out.append(buffer, ptr);
    }
    // printf("%.*f", precision, value): what a stream in fixed notation writes.
    static void appendFixed(std::string& out, double value, int precision = 6)
    {
        char buffer[400];
        auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::fixed,
                                       precision);
        out.append(buffer, ptr);
    }
    // printf("%.6f", value) of a float, without the general formatter: a float times 1e6 is
    // exact in a double (24 significant bits times fewer than 2^20), so rounding that product
    // to an integer (ties to even, as printf rounds an exact tie) gives the six decimals.
    static void appendFixed6(std::string& out, float value)
    {
        char buffer[64];
        out.append(buffer, writeFixed6(buffer, value));
    }
    // The same into a buffer of at least 64 characters; returns the end of the text.
    static char* writeFixed6(char* p, float value);
    // The shortest text that reads back (through parseDouble, and toFloat for a float) as the
    // same value; into a buffer of at least 64 characters.
    static char* writeShortest(char* p, double value);
    static char* writeShortest(char* p, float value);

    static void appendInt(std::string& out, long long value)
    {
        char buffer[24];
        auto [ptr, ec] = std::to_chars(buffer, buffer + sizeof buffer, value);
        out.append(buffer, ptr);
    }

    // The separators of numeric lists.
    static bool isSeparator(char c, const char* separators) { return c && std::strchr(separators, c); }

private:
    static bool startsPlainNumber(char c) { return (c >= '0' && c <= '9') || c == '-' || c == '.'; }
    static double strtodSlow(const char* p, const char* last, const char** end);
};

} // namespace Orvane

#endif

#include "base/NumberText.h"

#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdlib>
#include <locale.h>

namespace Orvane {

namespace {

locale_t cLocale()
{
    static locale_t locale = newlocale(LC_ALL_MASK, "C", locale_t(0));
    return locale;
}

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r';
}

// Hands the C library parser a NUL-terminated copy of the one token at p: leading blanks, then
// everything up to the next blank, comma or semicolon, none of which can be part of a number.
template <class Parse>
auto parseToken(const char* p, const char* last, const char** end, Parse parse)
{
    const char* q = p;
    while (q < last && isBlank(*q))
        ++q;
    while (q < last && *q && !isBlank(*q) && *q != ',' && *q != ';')
        ++q;
    char small[128];
    std::string large;
    std::size_t length = static_cast<std::size_t>(q - p);
    char* buffer = small;
    if (length >= sizeof small) {
        large.assign(p, length);
        buffer = large.data();
    } else {
        std::memcpy(small, p, length);
        small[length] = '\0';
    }
    char* stop = nullptr;
    int savedErrno = errno;
    auto value = parse(buffer, &stop);
    errno = savedErrno;
    *end = p + (stop - buffer);
    return value;
}

} // namespace

double NumberText::strtodSlow(const char* p, const char* last, const char** end)
{
    return parseToken(p, last, end, [](const char* text, char** stop) { return strtod_l(text, stop, cLocale()); });
}

int NumberText::parseInt(const char* p, const char* last, const char** end)
{
    if (p < last && *p >= '0' && *p <= '9') {
        long value = 0;
        auto [ptr, ec] = std::from_chars(p, last, value);
        if (ec == std::errc()) {
            *end = ptr;
            return static_cast<int>(value);
        }
    }
    return parseToken(p, last, end, [](const char* text, char** stop) {
        return static_cast<int>(strtol_l(text, stop, 10, cLocale()));
    });
}

float NumberText::toFloat(double value)
{
    // Beyond FLT_MAX plus half an ulp the nearest float is infinity; a plain cast of such a
    // value is undefined, so round it by hand.
    constexpr double limit = static_cast<double>(FLT_MAX) + 0x1p103;
    if (value >= limit)
        return HUGE_VALF;
    if (value <= -limit)
        return -HUGE_VALF;
    if (value > FLT_MAX)
        return FLT_MAX;
    if (value < -FLT_MAX)
        return -FLT_MAX;
    return static_cast<float>(value);
}

} // namespace Orvane

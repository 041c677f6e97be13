#include "base/NumberText.h"

#include <cerrno>
#include <cfloat>
#include <cmath>
#include <cstdint>
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

namespace {

// "00" to "99", for writing two digits at a time.
constexpr char digitPairs[] =
    "00010203040506070809101112131415161718192021222324252627282930313233343536373839"
    "40414243444546474849505152535455565758596061626364656667686970717273747576777879"
    "8081828384858687888990919293949596979899";

char* writeUnsigned(char* p, std::uint64_t n)
{
    if (n < 10) {
        *p = static_cast<char>('0' + n);
        return p + 1;
    }
    char  digits[20];
    char* end = digits + sizeof digits;
    char* q = end;
    while (n >= 100) {
        unsigned pair = static_cast<unsigned>(n % 100) * 2;
        n /= 100;
        *--q = digitPairs[pair + 1];
        *--q = digitPairs[pair];
    }
    if (n >= 10) {
        *--q = digitPairs[n * 2 + 1];
        *--q = digitPairs[n * 2];
    } else {
        *--q = static_cast<char>('0' + n);
    }
    std::memcpy(p, q, static_cast<std::size_t>(end - q));
    return p + (end - q);
}

} // namespace

char* NumberText::writeFixed6(char* p, float value)
{
    double scaled = std::fabs(static_cast<double>(value) * 1e6);
    // Beyond 2^63 (and for infinities and NaN) the general formatter takes over.
    if (!(scaled < 0x1p63))
        return std::to_chars(p, p + 64, static_cast<double>(value), std::chars_format::fixed, 6).ptr;
    auto   n = static_cast<std::uint64_t>(scaled);
    double rest = scaled - static_cast<double>(n);  // exact: the fraction of a double
    if (rest > 0.5 || (rest == 0.5 && (n & 1)))
        ++n;
    if (std::signbit(value))
        *p++ = '-';
    std::uint64_t whole = n / 1000000;
    auto          fraction = static_cast<unsigned>(n - whole * 1000000);
    p = writeUnsigned(p, whole);
    *p++ = '.';
    std::memcpy(p, digitPairs + (fraction / 10000) * 2, 2);
    std::memcpy(p + 2, digitPairs + (fraction / 100 % 100) * 2, 2);
    std::memcpy(p + 4, digitPairs + (fraction % 100) * 2, 2);
    return p + 6;
}

char* NumberText::writeShortest(char* p, double value)
{
    return std::to_chars(p, p + 64, value).ptr;
}

char* NumberText::writeShortest(char* p, float value)
{
    // The shortest float text is read as a double and then narrowed; in the rare case that the
    // two roundings land on another float, the double's own shortest text is exact.
    char* end = std::to_chars(p, p + 64, value).ptr;
    const char* stop = p;
    float back = toFloat(parseDouble(p, end, &stop));
    if (back == value || value != value)
        return end;
    return writeShortest(p, static_cast<double>(value));
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

#ifndef ORVANE_PLATFORM_PORDANE_BYTEORDER_H
#define ORVANE_PLATFORM_PORDANE_BYTEORDER_H

#include <bit>
#include <cstdint>
#include <type_traits>

namespace Pordane {

// The binary streams write every scalar little-endian: on the usual hosts these are no-ops.
template <class U>
constexpr U toLittleEndian(U value)
{
    static_assert(std::is_unsigned_v<U>, "byte order works on unsigned words");
    if constexpr (std::endian::native == std::endian::little || sizeof(U) == 1) {
        return value;
    } else if constexpr (sizeof(U) == 2) {
        return static_cast<U>(__builtin_bswap16(value));
    } else if constexpr (sizeof(U) == 4) {
        return static_cast<U>(__builtin_bswap32(value));
    } else {
        static_assert(sizeof(U) == 8, "unsupported word size");
        return static_cast<U>(__builtin_bswap64(value));
    }
}

// Swapping is its own inverse.
template <class U>
constexpr U fromLittleEndian(U value)
{
    return toLittleEndian(value);
}

} // namespace Pordane

#endif

#ifndef ORVANE_TESTS_ARRAYPAYLOADS_H
#define ORVANE_TESTS_ARRAYPAYLOADS_H

// Payloads of the X3D compressed-binary array algorithms, encoded independently of the decoders
// (used by the decoder tests and benchmarks). Callers link zlib.
#include <zlib.h>

#include <bit>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Orvane::Test {

inline std::string deflated(std::string_view raw, int level = Z_DEFAULT_COMPRESSION)
{
    uLongf size = compressBound(raw.size());
    std::string out(size, '\0');
    compress2(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(raw.data()), raw.size(),
              level);
    out.resize(size);
    return out;
}

inline void appendBigEndian32(std::string& out, std::uint32_t value)
{
    for (int shift = 24; shift >= 0; shift -= 8)
        out += static_cast<char>(value >> shift);
}

inline std::string bigEndian32(std::uint32_t value)
{
    std::string out;
    appendBigEndian32(out, value);
    return out;
}

// The low width bits of each value, one after the other, most significant bit first.
inline std::string packBits(const std::vector<std::uint32_t>& values, unsigned width)
{
    std::string out((values.size() * width + 7) / 8, '\0');
    std::size_t bit = 0;
    for (std::uint32_t value : values)
        for (unsigned k = width; k-- > 0; ++bit)
            if (value >> k & 1)
                out[bit / 8] = static_cast<char>(out[bit / 8] | 0x80 >> (bit % 8));
    return out;
}

// The E + M + 1 quantised bits of f, which must be representable in them; 0 for 0.
inline std::uint32_t quantize(float f, int exponentBits, int mantissaBits)
{
    std::uint32_t word = std::bit_cast<std::uint32_t>(f);
    if ((word & 0x7FFFFFFF) == 0)
        return 0;
    std::uint32_t sign = word >> 31;
    std::uint32_t exponent = ((word >> 23) & 0xFF) - 127 + (1u << (exponentBits - 1));
    std::uint32_t mantissa = (word & 0x7FFFFF) >> (23 - mantissaBits);
    return (sign << exponentBits | exponent) << mantissaBits | mantissa;
}

// Count, span, then the zlib stream of each value minus the one span places back, plus one.
inline std::string deltaPayload(const std::vector<std::int32_t>& values, int span, int level = Z_DEFAULT_COMPRESSION)
{
    std::string words;
    words.reserve(values.size() * 4);
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::uint32_t back = span > 0 && i >= std::size_t(span) ? std::uint32_t(values[i - span]) : 0;
        appendBigEndian32(words, std::uint32_t(values[i]) - back + 1);
    }
    std::string out = bigEndian32(std::uint32_t(values.size()));
    out += static_cast<char>(span);
    return out + deflated(words, level);
}

inline std::vector<std::uint32_t> quantizeAll(const std::vector<float>& values, int exponentBits, int mantissaBits)
{
    std::vector<std::uint32_t> bits;
    bits.reserve(values.size());
    for (float v : values)
        bits.push_back(quantize(v, exponentBits, mantissaBits));
    return bits;
}

// The first form: E, M, inflated size, count, zlib stream.
inline std::string quantizedPayload(const std::vector<float>& values, int exponentBits, int mantissaBits,
                                    int level = Z_DEFAULT_COMPRESSION)
{
    std::string bits = packBits(quantizeAll(values, exponentBits, mantissaBits), exponentBits + mantissaBits + 1);
    std::string out{static_cast<char>(exponentBits), static_cast<char>(mantissaBits)};
    appendBigEndian32(out, std::uint32_t(bits.size()));
    appendBigEndian32(out, std::uint32_t(values.size()));
    return out + deflated(bits, level);
}

// The second form: signed flag and E, M, count, zlib stream of the given bits.
inline std::string quantizedV2Payload(std::string_view bits, std::size_t count, int exponentBits, int mantissaBits,
                                      bool signedValues)
{
    std::string out{static_cast<char>(exponentBits | (signedValues ? 0x80 : 0)), static_cast<char>(mantissaBits)};
    appendBigEndian32(out, std::uint32_t(count));
    return out + deflated(bits);
}

} // namespace Orvane::Test

#endif

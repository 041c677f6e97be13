#include "base/ZlibArrayEncodingAlgorithm.h"

#include "base/Log.h"

#include <zlib.h>

#include <algorithm>
#include <bit>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>

namespace Orvane {

ZlibArrayEncodingAlgorithm::ZlibArrayEncodingAlgorithm(const char* name, const char* failure)
    : _name(name), _failure(failure)
{
}

ZlibArrayEncodingAlgorithm::~ZlibArrayEncodingAlgorithm() = default;

void ZlibArrayEncodingAlgorithm::encodeToOutputStream(bool, const Xeltra::EncodedData&, std::ostream&)
{
    fail("Not implemented");
}

void ZlibArrayEncodingAlgorithm::encodeToOutputStream(bool, const std::string&, std::ostream&)
{
    fail("Not implemented");
}

void ZlibArrayEncodingAlgorithm::reject(const char* format, ...)
{
    _result.clear();
    if (Log::the().enabled(LOG_NOTICE)) {
        char reason[256];
        va_list args;
        va_start(args, format);
        std::vsnprintf(reason, sizeof reason, format, args);
        va_end(args);
        ORV_NOTICE("%s: %s\n", _name, reason);
    }
    fail(_failure);
}

void ZlibArrayEncodingAlgorithm::readPayloadWithHeader(std::istream& in, unsigned int length, std::size_t headerSize,
                                                       std::vector<unsigned char>& buffer)
{
    std::size_t got = Xeltra::EncodingAlgorithm::readPayload(in, length, buffer);
    if (got < headerSize)
        reject("a payload of %zu bytes is shorter than its %zu-byte header", got, headerSize);
}

void ZlibArrayEncodingAlgorithm::checkInflatable(std::uint64_t size, std::size_t streamLength)
{
    if (size > maxInflatedSize(streamLength))
        reject("%llu inflated bytes cannot come from %zu bytes of zlib data", static_cast<unsigned long long>(size),
               streamLength);
}

void ZlibArrayEncodingAlgorithm::checkNotNegative(std::int32_t value, const char* what)
{
    if (value < 0)
        reject("%s %d is negative", what, value);
}

void ZlibArrayEncodingAlgorithm::checkQuantization(int exponentBits, int mantissaBits)
{
    if (exponentBits < 1 || exponentBits > 8 || mantissaBits < 0 || mantissaBits > 23)
        reject("%d exponent and %d mantissa bits do not describe a float", exponentBits, mantissaBits);
}

void ZlibArrayEncodingAlgorithm::inflate(const unsigned char* stream, std::size_t streamLength, void* into,
                                         std::uint64_t size)
{
    // zlib wants somewhere to write even when nothing is expected.
    unsigned char nothing;
    uLongf inflated = static_cast<uLongf>(size);
    int status = ::uncompress(size ? static_cast<Bytef*>(into) : &nothing, &inflated, stream,
                              static_cast<uLong>(streamLength));
    if (status != Z_OK)
        reject("the zlib stream does not inflate into %llu bytes (zlib status %d)",
               static_cast<unsigned long long>(size), status);
    // A shorter stream would leave part of the buffer unwritten.
    if (inflated != size)
        reject("the zlib stream inflates to %llu bytes, not the %llu its header gives",
               static_cast<unsigned long long>(inflated), static_cast<unsigned long long>(size));
}

namespace {

void dequantize(const unsigned char* bits, std::size_t size, int exponentBits, int mantissaBits, bool keepSign,
                float* out, std::size_t count)
{
    const unsigned width = unsigned(exponentBits + mantissaBits + 1);  // 2 to 32
    // Each value is handled as the 32 bits that begin with it: the value on top, the bits of the
    // next ones below. Shifted down past the sign, its exponent ends on the float's exponent field
    // and its mantissa starts the float's mantissa; the bits below the mantissa are cut off.
    const std::uint32_t valueMask = ~std::uint32_t(0) << (32 - width);
    const std::uint32_t signBit = keepSign ? 0x80000000u : 0;
    const unsigned fieldShift = unsigned(9 - exponentBits);
    const std::uint32_t fieldMask = ~((std::uint32_t(1) << (23 - mantissaBits)) - 1);
    const std::int32_t bias = (127 - (1 << (exponentBits - 1))) * (1 << 23);

    auto build = [=](std::uint32_t top) {
        auto field = std::int32_t(((top << 1) >> fieldShift) & fieldMask) + bias;
        // With 8 exponent bits the stored exponent 0 would land one below the float's range:
        // it goes to the bottom of it instead.
        field = field < 0 ? field + (1 << 23) : field;
        return std::bit_cast<float>(top & valueMask ? (top & signBit) | std::uint32_t(field) : 0u);
    };

    // A value of at most 32 bits starting anywhere in a byte lies within the 8 bytes from that byte;
    // values whose 8 bytes are all inside the buffer are read with one load each.
    std::size_t whole = size >= 8 ? std::min<std::size_t>(count, (size - 8) * 8 / width + 1) : 0;
    std::uint64_t bit = 0;
    std::size_t i = 0;
    for (; i < whole; ++i, bit += width) {
        std::uint64_t word;
        std::memcpy(&word, bits + (bit >> 3), sizeof word);
        if constexpr (std::endian::native == std::endian::little)
            word = __builtin_bswap64(word);
        out[i] = build(std::uint32_t((word << (bit & 7)) >> 32));
    }
    for (; i < count; ++i, bit += width) {
        std::uint64_t word = 0;
        std::size_t at = bit >> 3;
        for (std::size_t k = at; k < at + 8; ++k)
            word = word << 8 | (k < size ? bits[k] : 0);
        out[i] = build(std::uint32_t((word << (bit & 7)) >> 32));
    }
}

} // namespace

Xeltra::EncodedData& ZlibArrayEncodingAlgorithm::decodeQuantized(std::vector<unsigned char>& payload,
                                                                 std::size_t headerSize, int exponentBits,
                                                                 int mantissaBits, bool keepSign, std::int32_t count,
                                                                 std::uint64_t size)
{
    const std::size_t streamLength = payload.size() - headerSize;
    checkInflatable(size, streamLength);
    std::unique_ptr<unsigned char[]> bits = std::make_unique_for_overwrite<unsigned char[]>(std::size_t(size));
    inflate(payload.data() + headerSize, streamLength, bits.get(), size);
    payload = {};

    std::vector<float>& values = _result.makeFloatArray();
    values.resize(std::size_t(count));
    dequantize(bits.get(), std::size_t(size), exponentBits, mantissaBits, keepSign, values.data(), values.size());
    return _result;
}

} // namespace Orvane

#include "base/QuantizedzlibFloatArrayEncodingAlgorithmV2.h"

#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include <vector>

namespace Orvane {

namespace {
[[maybe_unused]] const bool registered =
    Xeltra::EncodingAlgorithmRegistry::the().addType<QuantizedzlibFloatArrayEncodingAlgorithmV2>(
        std::string(QuantizedzlibFloatArrayEncodingAlgorithmV2::algorithmURI));
} // namespace

QuantizedzlibFloatArrayEncodingAlgorithmV2::QuantizedzlibFloatArrayEncodingAlgorithmV2()
    : ZlibArrayEncodingAlgorithm("QuantizedzlibFloatArrayEncodingAlgorithmV2", "Could not decompress stream")
{
}

QuantizedzlibFloatArrayEncodingAlgorithmV2::~QuantizedzlibFloatArrayEncodingAlgorithmV2() = default;

Xeltra::EncodedData& QuantizedzlibFloatArrayEncodingAlgorithmV2::decodeFromInputStream(unsigned int length,
                                                                                      std::istream& in)
{
    constexpr std::size_t headerSize = 6;
    std::vector<unsigned char> payload;
    readPayloadWithHeader(in, length, headerSize, payload);
    const bool keepSign = payload[0] & 0x80;
    const int exponentBits = payload[0] & 0x7F;
    const int mantissaBits = static_cast<signed char>(payload[1]);
    const auto count = static_cast<std::int32_t>(bigEndian32(payload.data() + 2));
    checkQuantization(exponentBits, mantissaBits);
    checkNotNegative(count, "count");
    // The size is not stored: it is worked out in single precision and truncated, as it always has
    // been, not rounded up. When the bits do not fill the last byte, that byte is not counted and a
    // stream that holds it overflows the buffer; a stream without it decodes, the last value's
    // missing bits reading as zero.
    const auto size = static_cast<std::uint64_t>(
        static_cast<float>(std::int64_t(exponentBits + mantissaBits + 1) * count) * 0.125f);
    return decodeQuantized(payload, headerSize, exponentBits, mantissaBits, keepSign, count, size);
}

} // namespace Orvane

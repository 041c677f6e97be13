#include "base/QuantizedzlibFloatArrayEncodingAlgorithmV2.h"

#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include <memory>
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
    const std::size_t streamLength = payload.size() - headerSize;
    checkQuantization(exponentBits, mantissaBits);
    checkNotNegative(count, "count");
    // The size is not stored. It is worked out in single precision and truncated, as the format's
    // encoders expect: when the bits do not fill the last byte, that byte is not counted, and a
    // stream that holds it overflows the buffer. The missing bits of the last value read as zero.
    const auto size = static_cast<std::uint64_t>(
        static_cast<float>(std::int64_t(exponentBits + mantissaBits + 1) * count) * 0.125f);
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

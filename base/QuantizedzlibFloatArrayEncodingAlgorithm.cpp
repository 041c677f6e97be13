#include "base/QuantizedzlibFloatArrayEncodingAlgorithm.h"

#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include <vector>

namespace Orvane {

namespace {
[[maybe_unused]] const bool registered =
    Xeltra::EncodingAlgorithmRegistry::the().addType<QuantizedzlibFloatArrayEncodingAlgorithm>(
        std::string(QuantizedzlibFloatArrayEncodingAlgorithm::algorithmURI));
} // namespace

QuantizedzlibFloatArrayEncodingAlgorithm::QuantizedzlibFloatArrayEncodingAlgorithm()
    : ZlibArrayEncodingAlgorithm("QuantizedzlibFloatArrayEncodingAlgorithm",
                                 "Error while decoding QuantizedzlibFloatArray")
{
}

QuantizedzlibFloatArrayEncodingAlgorithm::~QuantizedzlibFloatArrayEncodingAlgorithm() = default;

Xeltra::EncodedData& QuantizedzlibFloatArrayEncodingAlgorithm::decodeFromInputStream(unsigned int length,
                                                                                    std::istream& in)
{
    constexpr std::size_t headerSize = 10;
    std::vector<unsigned char> payload;
    readPayloadWithHeader(in, length, headerSize, payload);
    const int exponentBits = payload[0];
    const int mantissaBits = payload[1];
    const auto size = static_cast<std::int32_t>(bigEndian32(payload.data() + 2));
    const auto count = static_cast<std::int32_t>(bigEndian32(payload.data() + 6));
    checkQuantization(exponentBits, mantissaBits);
    checkNotNegative(size, "size");
    checkNotNegative(count, "count");
    const auto width = unsigned(exponentBits + mantissaBits + 1);
    if (std::uint64_t(count) * width > std::uint64_t(size) * 8)
        reject("%d values of %u bits do not fit in %d bytes", count, width, size);
    return decodeQuantized(payload, headerSize, exponentBits, mantissaBits, true, count, std::uint64_t(size));
}

} // namespace Orvane

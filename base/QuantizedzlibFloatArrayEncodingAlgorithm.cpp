#include "base/QuantizedzlibFloatArrayEncodingAlgorithm.h"

#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include <memory>
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
    const std::size_t streamLength = payload.size() - headerSize;
    checkQuantization(exponentBits, mantissaBits);
    checkNotNegative(size, "size");
    checkNotNegative(count, "count");
    checkInflatable(std::uint64_t(size), streamLength);
    const auto width = unsigned(exponentBits + mantissaBits + 1);
    if (std::uint64_t(count) * width > std::uint64_t(size) * 8)
        reject("%d values of %u bits do not fit in %d bytes", count, width, size);

    std::unique_ptr<unsigned char[]> bits = std::make_unique_for_overwrite<unsigned char[]>(std::size_t(size));
    inflate(payload.data() + headerSize, streamLength, bits.get(), std::size_t(size));
    payload = {};

    std::vector<float>& values = _result.makeFloatArray();
    values.resize(std::size_t(count));
    dequantize(bits.get(), std::size_t(size), exponentBits, mantissaBits, true, values.data(), values.size());
    return _result;
}

} // namespace Orvane

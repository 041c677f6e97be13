#include "base/ZlibFloatArrayEncodingAlgorithm.h"

#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include <memory>
#include <vector>

namespace Orvane {

namespace {
[[maybe_unused]] const bool registered = Xeltra::EncodingAlgorithmRegistry::the().addType<ZlibFloatArrayEncodingAlgorithm>(
    std::string(ZlibFloatArrayEncodingAlgorithm::algorithmURI));
} // namespace

ZlibFloatArrayEncodingAlgorithm::ZlibFloatArrayEncodingAlgorithm()
    : ZlibArrayEncodingAlgorithm("ZlibFloatArrayEncodingAlgorithm", "Could not decompress stream")
{
}

ZlibFloatArrayEncodingAlgorithm::~ZlibFloatArrayEncodingAlgorithm() = default;

Xeltra::EncodedData& ZlibFloatArrayEncodingAlgorithm::decodeFromInputStream(unsigned int length, std::istream& in)
{
    constexpr std::size_t headerSize = 8;
    constexpr std::size_t streamOffset = 4;  // the count's bytes open the stream, as always
    std::vector<unsigned char> payload;
    readPayloadWithHeader(in, length, headerSize, payload);
    const auto size = static_cast<std::int32_t>(bigEndian32(payload.data()));
    const auto count = static_cast<std::int32_t>(bigEndian32(payload.data() + 4));
    const std::size_t streamLength = payload.size() - streamOffset;
    checkNotNegative(size, "size");
    checkNotNegative(count, "count");
    checkInflatable(std::uint64_t(size), streamLength);

    std::unique_ptr<unsigned char[]> inflated = std::make_unique_for_overwrite<unsigned char[]>(std::size_t(size));
    inflate(payload.data() + streamOffset, streamLength, inflated.get(), std::size_t(size));

    // S values, the first N of them set to zero: all of them are, as the inflated bytes are not used.
    _result.makeFloatArray().resize(std::size_t(size));
    return _result;
}

} // namespace Orvane

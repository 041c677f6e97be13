#include "base/DeltazlibIntArrayEncodingAlgorithm.h"

#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include <bit>
#include <cstring>
#include <vector>

namespace Orvane {

namespace {
[[maybe_unused]] const bool registered = Xeltra::EncodingAlgorithmRegistry::the().addType<DeltazlibIntArrayEncodingAlgorithm>(
    std::string(DeltazlibIntArrayEncodingAlgorithm::algorithmURI));
} // namespace

DeltazlibIntArrayEncodingAlgorithm::DeltazlibIntArrayEncodingAlgorithm()
    : ZlibArrayEncodingAlgorithm("DeltazlibIntArrayEncodingAlgorithm", "Could not decompress stream")
{
}

DeltazlibIntArrayEncodingAlgorithm::~DeltazlibIntArrayEncodingAlgorithm() = default;

Xeltra::EncodedData& DeltazlibIntArrayEncodingAlgorithm::decodeFromInputStream(unsigned int length, std::istream& in)
{
    constexpr std::size_t headerSize = 5;
    std::vector<unsigned char> payload;
    readPayloadWithHeader(in, length, headerSize, payload);
    const auto count = static_cast<std::int32_t>(bigEndian32(payload.data()));
    const auto span = static_cast<signed char>(payload[4]);
    const std::size_t streamLength = payload.size() - headerSize;
    checkNotNegative(count, "count");
    checkInflatable(std::uint64_t(count) * 4, streamLength);

    // The words inflate straight into the result and are turned into values in place.
    std::vector<std::int32_t>& values = _result.makeIntArray();
    values.resize(std::size_t(count));
    inflate(payload.data() + headerSize, streamLength, values.data(), values.size() * 4);
    payload = {};

    // Unsigned arithmetic: a hostile stream may overflow, and wraps as the encoder's sums did.
    auto* words = reinterpret_cast<std::uint32_t*>(values.data());
    const std::size_t n = values.size();
    auto stored = [](std::uint32_t word) {
        if constexpr (std::endian::native == std::endian::little)
            word = __builtin_bswap32(word);
        return word - 1;
    };
    // The span counts as unsigned: a negative one would begin beyond any array, so it codes no deltas.
    const std::size_t stride = span > 0 ? std::size_t(span) : n;
    std::size_t i = 0;
    for (; i < n && i < stride; ++i)
        words[i] = stored(words[i]);
    for (; i < n; ++i)
        words[i] = stored(words[i]) + words[i - stride];
    return _result;
}

} // namespace Orvane

#include "base/DeltazlibIntArrayEncodingAlgorithm.h"

#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include <algorithm>
#include <bit>
#include <vector>

namespace Orvane {

namespace {
[[maybe_unused]] const bool registered = Xeltra::EncodingAlgorithmRegistry::the().addType<DeltazlibIntArrayEncodingAlgorithm>(
    std::string(DeltazlibIntArrayEncodingAlgorithm::algorithmURI));

// Unsigned arithmetic throughout: a hostile stream may overflow, and wraps as the encoder's sums did.
// A big-endian word as stored, minus the one that the encoder added.
inline std::uint32_t stored(std::uint32_t word)
{
    if constexpr (std::endian::native == std::endian::little)
        word = __builtin_bswap32(word);
    return word - 1;
}

// The common short strides keep one running sum per position of the stride in registers; through
// memory, each sum would wait for the store of the one before.
template <std::size_t stride>
void undelta(std::uint32_t* words, std::size_t n)
{
    std::uint32_t sums[stride] = {};
    std::size_t i = 0;
    for (; i + stride <= n; i += stride)
        for (std::size_t j = 0; j < stride; ++j)
            words[i + j] = sums[j] += stored(words[i + j]);
    for (std::size_t j = 0; i < n; ++i, ++j)
        words[i] = sums[j] += stored(words[i]);
}

// Turns the n stored words into values in place, each adding the value stride places back
// (none for stride 0).
void undelta(std::uint32_t* words, std::size_t n, std::size_t stride)
{
    switch (stride) {
    case 1: return undelta<1>(words, n);
    case 2: return undelta<2>(words, n);
    case 3: return undelta<3>(words, n);
    case 4: return undelta<4>(words, n);
    case 5: return undelta<5>(words, n);
    case 6: return undelta<6>(words, n);
    case 7: return undelta<7>(words, n);
    case 8: return undelta<8>(words, n);
    default: break;
    }
    const std::size_t first = stride ? std::min(n, stride) : n;
    std::size_t i = 0;
    for (; i < first; ++i)
        words[i] = stored(words[i]);
    for (; i < n; ++i)
        words[i] = stored(words[i]) + words[i - stride];
}

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

    // The span counts as unsigned: a negative one would begin beyond any array, so it codes no deltas.
    undelta(reinterpret_cast<std::uint32_t*>(values.data()), values.size(), span > 0 ? std::size_t(span) : 0);
    return _result;
}

} // namespace Orvane

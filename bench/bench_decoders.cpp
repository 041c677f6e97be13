// The X3D compressed-binary array decoders against zlib's bare uncompress of the same stream into
// a buffer allocated once: the inflation is the floor, and the goal is at least 80 % of its
// throughput (the header checks, allocation, byte order, deltas and bit unpacking cost at most a
// quarter of it). Throughput counts the inflated bytes for both.
#include "base/DeltazlibIntArrayEncodingAlgorithm.h"
#include "base/QuantizedzlibFloatArrayEncodingAlgorithm.h"
#include "tests/support/ArrayPayloads.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdlib>
#include <string>
#include <vector>

using namespace Orvane;
using namespace Orvane::Test;

namespace {

// A grid of quads as an index array, "a b c d -1" per face: 12 MB of int32 and a span of 5.
const std::string& quadIndices()
{
    static const std::string payload = [] {
        constexpr int columns = 1000, rows = 600;
        std::vector<std::int32_t> indices;
        indices.reserve(std::size_t(columns) * rows * 5);
        for (int r = 0; r < rows; ++r)
            for (int c = 0; c < columns; ++c) {
                std::int32_t v = r * (columns + 1) + c;
                indices.insert(indices.end(), {v, v + 1, v + columns + 2, v + columns + 1, -1});
            }
        return deltaPayload(indices, 5);
    }();
    return payload;
}

// The coordinates of a rolling surface, 1,000,000 floats, quantised with E and M bits.
std::string surface(int exponentBits, int mantissaBits)
{
    std::vector<float> values;
    values.reserve(1000000);
    for (int i = 0; values.size() < 1000000; ++i) {
        float x = float(i % 577) * 0.05f, z = float(i / 577) * 0.05f;
        float y = std::sin(x) * std::cos(z * 0.7f) * 3.0f;
        for (float v : {x, y, z}) {
            // Cut to what M bits hold, so the test encoder's quantisation is exact.
            std::uint32_t word = std::bit_cast<std::uint32_t>(v) & ~((1u << (23 - mantissaBits)) - 1);
            values.push_back(std::bit_cast<float>(word));
        }
    }
    values.resize(1000000);
    return quantizedPayload(values, exponentBits, mantissaBits);
}

const std::string& surface8x23()
{
    static const std::string payload = surface(8, 23);
    return payload;
}

const std::string& surface5x10()
{
    static const std::string payload = surface(5, 10);
    return payload;
}

// Where a payload's zlib stream begins, and how many bytes it inflates to (from its header).
struct Layout {
    std::size_t headerSize, sizeAt, scale;

    std::size_t inflated(const std::string& bytes) const
    {
        const auto* at = reinterpret_cast<const unsigned char*>(bytes.data()) + sizeAt;
        return (std::size_t(at[0]) << 24 | std::size_t(at[1]) << 16 | std::size_t(at[2]) << 8 | at[3]) * scale;
    }
};
constexpr Layout deltaLayout{5, 0, 4};       // the count of 32-bit words
constexpr Layout quantizedLayout{10, 2, 1};  // the stated size in bytes

template <class Algorithm, const std::string& (*payload)(), const Layout& layout>
void decode(benchmark::State& state)
{
    const std::string& bytes = payload();
    Algorithm algorithm;
    for (auto _ : state)
        benchmark::DoNotOptimize(algorithm.decodeFromBytes(bytes).size());
    state.SetBytesProcessed(std::int64_t(state.iterations() * layout.inflated(bytes)));
}

// The same zlib stream inflated by zlib alone, into a buffer allocated once.
template <const std::string& (*payload)(), const Layout& layout>
void bareUncompress(benchmark::State& state)
{
    const std::string& bytes = payload();
    const std::size_t size = layout.inflated(bytes);
    std::vector<unsigned char> out(size);
    for (auto _ : state) {
        uLongf got = size;
        if (uncompress(out.data(), &got, reinterpret_cast<const Bytef*>(bytes.data() + layout.headerSize),
                       bytes.size() - layout.headerSize) != Z_OK)
            std::abort();
        benchmark::DoNotOptimize(out.data());
    }
    state.SetBytesProcessed(std::int64_t(state.iterations() * size));
}

} // namespace

BENCHMARK(decode<DeltazlibIntArrayEncodingAlgorithm, quadIndices, deltaLayout>)
    ->Name("delta_12MB_span5/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(bareUncompress<quadIndices, deltaLayout>)->Name("delta_12MB_span5/uncompress")->Unit(benchmark::kMillisecond);
BENCHMARK(decode<QuantizedzlibFloatArrayEncodingAlgorithm, surface8x23, quantizedLayout>)
    ->Name("quantized_1M_E8M23/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(bareUncompress<surface8x23, quantizedLayout>)
    ->Name("quantized_1M_E8M23/uncompress")->Unit(benchmark::kMillisecond);
BENCHMARK(decode<QuantizedzlibFloatArrayEncodingAlgorithm, surface5x10, quantizedLayout>)
    ->Name("quantized_1M_E5M10/orvane")->Unit(benchmark::kMillisecond);
BENCHMARK(bareUncompress<surface5x10, quantizedLayout>)
    ->Name("quantized_1M_E5M10/uncompress")->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();

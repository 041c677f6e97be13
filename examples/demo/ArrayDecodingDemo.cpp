// The compressed array decoders, as a reader of X3D compressed binary documents uses them: an
// algorithm found by its URI decodes a payload. The payloads are made here with zlib.
#include "platform/xeltra/EncodingAlgorithmException.h"
#include "platform/xeltra/EncodingAlgorithmRegistry.h"

#include <zlib.h>

#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

namespace {

std::string bigEndian32(std::uint32_t value)
{
    return {static_cast<char>(value >> 24), static_cast<char>(value >> 16), static_cast<char>(value >> 8),
            static_cast<char>(value)};
}

std::string deflated(const std::string& raw)
{
    uLongf size = compressBound(raw.size());
    std::string out(size, '\0');
    compress(reinterpret_cast<Bytef*>(out.data()), &size, reinterpret_cast<const Bytef*>(raw.data()), raw.size());
    out.resize(size);
    return out;
}

void decode(const char* uri, const std::string& payload)
{
    std::printf("  %s\n   ", uri);
    std::unique_ptr<Xeltra::EncodingAlgorithm> algorithm = Xeltra::EncodingAlgorithmRegistry::the().create(uri);
    try {
        const Xeltra::EncodedData& data = algorithm->decodeFromBytes(payload);
        for (std::int32_t v : data.intArray())
            std::printf(" %d", v);
        for (float v : data.floatArray())
            std::printf(" %g", v);
        std::printf("\n");
    } catch (const Xeltra::EncodingAlgorithmException& error) {
        std::printf(" refused: \"%s\"\n", error.what());
    }
}

} // namespace

void arrayDecodingDemo()
{
    std::printf("\nCompressed arrays decoded:\n");

    // Two quads' indices, "a b c d -1" each, delta coded with a span of 5: each word is the value
    // minus the one five places back, plus one.
    const std::vector<std::int32_t> indices = {0, 1, 5, 4, -1, 1, 2, 6, 5, -1};
    std::string words;
    for (std::size_t i = 0; i < indices.size(); ++i)
        words += bigEndian32(std::uint32_t(indices[i] - (i >= 5 ? indices[i - 5] : 0) + 1));
    decode("encoder://web3d.org/DeltazlibIntArrayEncoder", bigEndian32(10) + '\5' + deflated(words));

    // Four 6-bit floats (3 exponent bits, 2 mantissa bits, bias 4): 1.5, -0.625, 3, 0.
    const std::string bits = "\x4A\xD5\x80";
    decode("encoder://web3d.org/QuantizedzlibFloatArrayEncoder",
           std::string("\x03\x02", 2) + bigEndian32(3) + bigEndian32(4) + deflated(bits));
    // The same bits in the second form, unsigned: the sign bits are ignored. Its size is not stored
    // but worked out and truncated to 3 bytes.
    decode("encoder://web3d.org/QuantizedzlibFloatArrayEncoder_v2",
           std::string("\x03\x02", 2) + bigEndian32(4) + deflated(bits));
    // The zlib float form decodes to zeros, as many as its size says.
    decode("encoder://web3d.org/zlibFloatArrayEncoder", bigEndian32(3) + deflated("xyz"));
    // A header that claims more than its zlib data could ever hold.
    decode("encoder://web3d.org/DeltazlibIntArrayEncoder", bigEndian32(1000000000) + '\1' + deflated(words));
}

// Any bytes given to the X3D compressed-binary array decoders. The first byte picks the decoder
// (bits 0-1) and how the rest is used: as the payload itself, or (bit 2) as a header followed by
// bytes that are deflated here, so that the decoding behind the inflation is reached as well,
// with (bit 3) the header's count and size made to fit the deflated bytes. A decoder may only
// throw its own exception, and then holds no result; what it returns has the length its header
// gives. Run with -malloc_limit_mb to hold every allocation to what a payload can inflate to.
#include "base/DeltazlibIntArrayEncodingAlgorithm.h"
#include "base/Log.h"
#include "base/QuantizedzlibFloatArrayEncodingAlgorithm.h"
#include "base/QuantizedzlibFloatArrayEncodingAlgorithmV2.h"
#include "base/ZlibFloatArrayEncodingAlgorithm.h"
#include "platform/xeltra/EncodingAlgorithmException.h"

#include <zlib.h>

#include <cstdint>
#include <cstdlib>
#include <array>
#include <memory>
#include <string>

using namespace Orvane;

namespace {

void putBigEndian32(std::string& out, std::size_t at, std::uint32_t value)
{
    for (int k = 0; k < 4; ++k)
        out[at + k] = static_cast<char>(value >> (24 - 8 * k));
}

std::uint32_t bigEndian32(const std::string& in, std::size_t at)
{
    std::uint32_t value = 0;
    for (int k = 0; k < 4; ++k)
        value = value << 8 | static_cast<unsigned char>(in[at + k]);
    return value;
}

// A valid empty array of each kind: decoding it first gives hold of the algorithm's result.
const std::string& emptyPayload(unsigned kind)
{
    static const std::array<std::string, 4> payloads = [] {
        uLongf packed = 64;
        std::string stream(packed, '\0');
        compress(reinterpret_cast<Bytef*>(stream.data()), &packed, reinterpret_cast<const Bytef*>(""), 0);
        stream.resize(packed);
        const std::string zero(4, '\0');
        return std::to_array<std::string>({zero + '\0' + stream, std::string("\x01\x00", 2) + zero + zero + stream,
                                           std::string("\x81\x00", 2) + zero + stream, zero + stream});
    }();
    return payloads[kind];
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size < 1)
        return 0;
    Log::the().setLevel(LOG_LOG);
    Log::the().setDefaultSinkEnabled(false);
    static const std::size_t headerSizes[] = {5, 10, 6, 4};  // the float form's stream begins at 4
    const unsigned kind = data[0] & 3;
    const bool deflateRest = data[0] & 4, fitHeader = data[0] & 8;
    std::unique_ptr<ZlibArrayEncodingAlgorithm> algorithm;
    switch (kind) {
    case 0: algorithm = std::make_unique<DeltazlibIntArrayEncodingAlgorithm>(); break;
    case 1: algorithm = std::make_unique<QuantizedzlibFloatArrayEncodingAlgorithm>(); break;
    case 2: algorithm = std::make_unique<QuantizedzlibFloatArrayEncodingAlgorithmV2>(); break;
    default: algorithm = std::make_unique<ZlibFloatArrayEncodingAlgorithm>(); break;
    }

    std::string payload(reinterpret_cast<const char*>(data + 1), size - 1);
    const std::size_t header = headerSizes[kind];
    if (deflateRest && payload.size() >= header) {
        std::string body = payload.substr(header);
        uLongf packed = compressBound(body.size());
        std::string stream(packed, '\0');
        compress(reinterpret_cast<Bytef*>(stream.data()), &packed, reinterpret_cast<const Bytef*>(body.data()),
                 body.size());
        stream.resize(packed);
        payload.resize(header);
        if (fitHeader) {
            if (kind == 0)
                putBigEndian32(payload, 0, std::uint32_t(body.size() / 4));
            else if (kind == 1)
                putBigEndian32(payload, 2, std::uint32_t(body.size()));
            else if (kind == 3)
                putBigEndian32(payload, 0, std::uint32_t(body.size()));
        }
        payload += stream;
    }

    Xeltra::EncodedData& result = algorithm->decodeFromBytes(emptyPayload(kind));
    try {
        algorithm->decodeFromBytes(payload);
        // What came out has the length the header gives.
        std::size_t expected = bigEndian32(payload, kind == 1 ? 6 : kind == 2 ? 2 : 0);
        if (result.size() != expected)
            std::abort();
    } catch (const Xeltra::EncodingAlgorithmException&) {
        if (result.kind() != Xeltra::EncodedData::EMPTY || !result.empty())
            std::abort();
    }
    return 0;
}

// The X3D compressed-binary array decoders: values from payloads built here with zlib, the
// deliberate oddities of each form, hostile headers, and the registry by URI.
#include "base/DeltazlibIntArrayEncodingAlgorithm.h"
#include "base/QuantizedzlibFloatArrayEncodingAlgorithm.h"
#include "base/QuantizedzlibFloatArrayEncodingAlgorithmV2.h"
#include "base/ZlibFloatArrayEncodingAlgorithm.h"
#include "platform/xeltra/EncodingAlgorithmException.h"
#include "platform/xeltra/EncodingAlgorithmRegistry.h"
#include "tests/support/ArrayPayloads.h"
#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <functional>
#include <memory>
#include <sstream>
#include <typeinfo>

using namespace Orvane;
using namespace Orvane::Test;
using Xeltra::EncodedData;
using Xeltra::EncodingAlgorithm;
using Xeltra::EncodingAlgorithmException;

namespace {

std::vector<std::int32_t> decodeInts(const std::string& payload)
{
    DeltazlibIntArrayEncodingAlgorithm algorithm;
    EncodedData& data = algorithm.decodeFromBytes(payload);
    EXPECT_EQ(data.kind(), EncodedData::INT_ARRAY);
    return data.intArray();
}

template <class Algorithm>
std::vector<float> decodeFloats(const std::string& payload)
{
    Algorithm algorithm;
    EncodedData& data = algorithm.decodeFromBytes(payload);
    EXPECT_EQ(data.kind(), EncodedData::FLOAT_ARRAY);
    return data.floatArray();
}

// The message of the exception that decoding payload throws; empty when none is thrown.
std::string failure(EncodingAlgorithm& algorithm, const std::string& payload)
{
    try {
        algorithm.decodeFromBytes(payload);
    } catch (const EncodingAlgorithmException& error) {
        return error.message();
    }
    return {};
}

std::string words(std::initializer_list<std::uint32_t> values)
{
    std::string out;
    for (std::uint32_t v : values)
        appendBigEndian32(out, v);
    return out;
}

std::string deltaHeader(std::uint32_t count, int span)
{
    return bigEndian32(count) + static_cast<char>(span);
}

} // namespace

TEST(DeltazlibIntArray, SpanCodesTheStrideOfTheDeltas)
{
    // Stored words are the value plus one; the span decides which earlier value each adds to.
    struct Case {
        int                       span;
        std::vector<std::int32_t> expected;
    };
    const std::string stored = words({1, 6, 0, 3, 2, 11, 1});
    const Case cases[] = {
        {0, {0, 5, -1, 2, 1, 10, 0}},        // values minus one, unchanged otherwise
        {1, {0, 5, 4, 6, 7, 17, 17}},        // running sums
        {3, {0, 5, -1, 2, 6, 9, 2}},         // interleaved triples: x, y and z each summed on their own
        {-1, {0, 5, -1, 2, 1, 10, 0}},       // negative: no deltas at all
        {-128, {0, 5, -1, 2, 1, 10, 0}},
        {100, {0, 5, -1, 2, 1, 10, 0}},      // beyond the array
    };
    for (const Case& c : cases)
        EXPECT_EQ(decodeInts(deltaHeader(7, c.span) + deflated(stored)), c.expected) << "span " << c.span;

    // The sums wrap as 32-bit words do.
    EXPECT_EQ(decodeInts(deltaHeader(3, 0) + deflated(words({0, 0x80000000u, 0xFFFFFFFFu}))),
              (std::vector<std::int32_t>{-1, INT_MAX, -2}));
    EXPECT_EQ(decodeInts(deltaHeader(2, 1) + deflated(words({0x80000000u, 3}))),
              (std::vector<std::int32_t>{INT_MAX, INT_MIN + 1}));

    // Round trip of a larger array through the test's own encoder, with every span that occurs.
    std::vector<std::int32_t> values(3000);
    for (std::size_t i = 0; i < values.size(); ++i)
        values[i] = std::int32_t(i * 7919 % 1000) - 500;
    for (int span : {1, 3, 5, 127})
        EXPECT_EQ(decodeInts(deltaPayload(values, span)), values) << "span " << span;
    EXPECT_TRUE(decodeInts(deltaPayload({}, 1)).empty());
}

TEST(QuantizedzlibFloatArray, RebuildsFloatsFromPackedBits)
{
    // Two 6-bit values (E 3, M 2) that straddle the first byte boundary: 010010 and 101101, the
    // first 1.5 (stored exponent 4, bias 4), the second -0.625.
    std::string header{3, 2};
    EXPECT_EQ(decodeFloats<QuantizedzlibFloatArrayEncodingAlgorithm>(header + bigEndian32(2) + bigEndian32(2) +
                                                                     deflated(std::string("\x4A\xD0", 2))),
              (std::vector<float>{1.5f, -0.625f}));

    // Values that fit their E and M exactly come back unchanged.
    struct Case {
        int                exponentBits, mantissaBits;
        std::vector<float> values;
    };
    const Case cases[] = {
        {8, 23, {0.0f, 1.0f, -3.14159274f, 1e-30f, 3.0e38f, -1.17549435e-38f, 1e-40f}},
        {5, 10, {0.0f, 0.5f, -1.5f, 1024.0f, 3.0f / 1024.0f, -32752.0f}},
        {3, 4, {1.0f, -0.25f, 7.75f, 0.0f, -0.1171875f}},
        {1, 0, {1.0f, -1.0f, -0.5f, 0.0f}},  // 2-bit values, four to a byte
        {7, 17, {123.5f, -0.001953125f}},
    };
    for (const Case& c : cases)
        EXPECT_EQ(decodeFloats<QuantizedzlibFloatArrayEncodingAlgorithm>(
                      quantizedPayload(c.values, c.exponentBits, c.mantissaBits)),
                  c.values)
            << "E " << c.exponentBits << " M " << c.mantissaBits;
}

TEST(QuantizedzlibFloatArray, AllZeroBitsAreExactlyZero)
{
    for (int e : {1, 4, 8})
        for (int m : {0, 10, 23}) {
            std::vector<std::uint32_t> q(5, 0);
            std::string bits = packBits(q, e + m + 1);
            std::string payload{static_cast<char>(e), static_cast<char>(m)};
            payload += bigEndian32(std::uint32_t(bits.size())) + bigEndian32(5) + deflated(bits);
            for (float v : decodeFloats<QuantizedzlibFloatArrayEncodingAlgorithm>(payload))
                EXPECT_EQ(std::bit_cast<std::uint32_t>(v), 0u) << "E " << e << " M " << m;
        }
}

TEST(QuantizedzlibFloatArrayV2, SignedFlagDecidesWhetherTheTopBitCounts)
{
    // E 5, M 10: 16-bit values, -1.5 and 0.5 and 0.
    const std::vector<float> values = {-1.5f, 0.5f, 0.0f};
    const std::string bits = packBits(quantizeAll(values, 5, 10), 16);
    EXPECT_EQ(decodeFloats<QuantizedzlibFloatArrayEncodingAlgorithmV2>(quantizedV2Payload(bits, 3, 5, 10, true)), values);
    // Without the flag the sign bit is ignored: never negative, the magnitudes unchanged.
    EXPECT_EQ(decodeFloats<QuantizedzlibFloatArrayEncodingAlgorithmV2>(quantizedV2Payload(bits, 3, 5, 10, false)),
              (std::vector<float>{1.5f, 0.5f, 0.0f}));
    // A value that is only its top bit is not zero when that bit is ignored: the smallest exponent.
    std::string top = packBits({0x8000}, 16);
    EXPECT_EQ(decodeFloats<QuantizedzlibFloatArrayEncodingAlgorithmV2>(quantizedV2Payload(top, 1, 5, 10, false)),
              (std::vector<float>{std::ldexp(1.0f, -16)}));
}

TEST(QuantizedzlibFloatArrayV2, SizeIsTruncatedNotRoundedUp)
{
    // Three 6-bit values need 18 bits; the size counts 2 bytes. The stream that holds all three
    // bytes overflows that buffer and fails.
    QuantizedzlibFloatArrayEncodingAlgorithmV2 algorithm;
    const std::vector<std::uint32_t> q = {quantize(1.5f, 3, 2), quantize(-0.625f, 3, 2), quantize(3.0f, 3, 2)};
    const std::string bits = packBits(q, 6);
    ASSERT_EQ(bits.size(), 3u);
    EXPECT_EQ(failure(algorithm, quantizedV2Payload(bits, 3, 3, 2, true)), "Could not decompress stream");
    // A stream of the two counted bytes decodes; the last value's missing bits read as zero.
    std::vector<float> decoded =
        decodeFloats<QuantizedzlibFloatArrayEncodingAlgorithmV2>(quantizedV2Payload(bits.substr(0, 2), 3, 3, 2, true));
    EXPECT_EQ(decoded, (std::vector<float>{1.5f, -0.625f, 2.0f}));
}

TEST(ZlibFloatArray, DecodesToZerosOfTheStatedSize)
{
    // The stream is taken from the count on, so the count is the stream's first four bytes.
    const std::string stream = deflated(std::string(12, '\x7F'));
    std::vector<float> decoded = decodeFloats<ZlibFloatArrayEncodingAlgorithm>(bigEndian32(12) + stream);
    EXPECT_EQ(decoded, std::vector<float>(12, 0.0f));
    // A stream after a separate count is not a stream from offset 4.
    ZlibFloatArrayEncodingAlgorithm algorithm;
    EXPECT_EQ(failure(algorithm, bigEndian32(12) + bigEndian32(3) + stream), "Could not decompress stream");
}

TEST(ArrayDecoders, HostilePayloadsThrowAndLeaveNoResult)
{
    LogCapture log;
    const std::string deflate = "Could not decompress stream";
    const std::string quantized = "Error while decoding QuantizedzlibFloatArray";
    const std::string goodDelta = deltaPayload({1, 2, 3}, 1);
    const std::string goodQuantized = quantizedPayload({1.0f, 2.0f}, 5, 10);
    const std::string goodV2 = quantizedV2Payload(packBits({1, 2}, 16), 2, 5, 10, true);
    const std::string goodZlib = bigEndian32(4) + deflated("abcd");
    std::string corrupt = goodDelta;
    corrupt[7] = static_cast<char>(corrupt[7] ^ 0x55);

    struct Case {
        const char*                                  what;
        std::function<std::unique_ptr<EncodingAlgorithm>()> make;
        std::string                                  good, bad, text;
    };
    auto delta = [] { return std::make_unique<DeltazlibIntArrayEncodingAlgorithm>(); };
    auto v1 = [] { return std::make_unique<QuantizedzlibFloatArrayEncodingAlgorithm>(); };
    auto v2 = [] { return std::make_unique<QuantizedzlibFloatArrayEncodingAlgorithmV2>(); };
    auto zlib = [] { return std::make_unique<ZlibFloatArrayEncodingAlgorithm>(); };
    const Case cases[] = {
        {"corrupt stream", delta, goodDelta, corrupt, deflate},
        {"truncated stream", delta, goodDelta, goodDelta.substr(0, goodDelta.size() - 3), deflate},
        {"truncated header", delta, goodDelta, goodDelta.substr(0, 4), deflate},
        {"empty payload", delta, goodDelta, "", deflate},
        {"absurd count", delta, goodDelta, deltaHeader(2000000000, 1) + goodDelta.substr(5), deflate},
        {"negative count", delta, goodDelta, deltaHeader(0xFFFFFFFF, 1) + goodDelta.substr(5), deflate},
        {"count beyond the stream", delta, goodDelta, deltaHeader(4, 1) + goodDelta.substr(5), deflate},
        {"count short of the stream", delta, goodDelta, deltaHeader(2, 1) + goodDelta.substr(5), deflate},
        {"corrupt stream", v1, goodQuantized, goodQuantized.substr(0, 10) + "garbage!", quantized},
        {"truncated header", v1, goodQuantized, goodQuantized.substr(0, 9), quantized},
        {"absurd size", v1, goodQuantized, goodQuantized.substr(0, 2) + bigEndian32(0x7FFFFFFF) + bigEndian32(2) +
                                               goodQuantized.substr(10), quantized},
        {"count beyond the size", v1, goodQuantized,
         goodQuantized.substr(0, 6) + bigEndian32(3) + goodQuantized.substr(10), quantized},
        {"negative size", v1, goodQuantized, goodQuantized.substr(0, 2) + bigEndian32(0x80000000) + goodQuantized.substr(6),
         quantized},
        {"9 exponent bits", v1, goodQuantized, "\x09\x0A" + goodQuantized.substr(2), quantized},
        {"0 exponent bits", v1, goodQuantized, std::string("\x00\x0A", 2) + goodQuantized.substr(2), quantized},
        {"24 mantissa bits", v1, goodQuantized, "\x05\x18" + goodQuantized.substr(2), quantized},
        {"corrupt stream", v2, goodV2, goodV2.substr(0, 6) + "garbage!", deflate},
        {"truncated header", v2, goodV2, goodV2.substr(0, 5), deflate},
        {"absurd count", v2, goodV2, goodV2.substr(0, 2) + bigEndian32(0x7FFFFFFF) + goodV2.substr(6), deflate},
        {"negative count", v2, goodV2, goodV2.substr(0, 2) + bigEndian32(0xFFFFFFFE) + goodV2.substr(6), deflate},
        {"negative mantissa bits", v2, goodV2, "\x85\xFF" + goodV2.substr(2), deflate},
        {"9 exponent bits", v2, goodV2, "\x89\x0A" + goodV2.substr(2), deflate},
        {"corrupt stream", zlib, goodZlib, bigEndian32(4) + "\x78\x9C garbage", deflate},
        {"truncated header", zlib, goodZlib, goodZlib.substr(0, 7), deflate},
        {"absurd size", zlib, goodZlib, bigEndian32(0x7FFFFFF0) + goodZlib.substr(4), deflate},
        {"negative size", zlib, goodZlib, bigEndian32(0x80000000) + goodZlib.substr(4), deflate},
    };
    for (const Case& c : cases) {
        std::unique_ptr<EncodingAlgorithm> algorithm = c.make();
        EncodedData& result = algorithm->decodeFromBytes(c.good);
        ASSERT_FALSE(result.empty()) << c.what;
        EXPECT_EQ(failure(*algorithm, c.bad), c.text) << algorithm->uri() << ": " << c.what;
        EXPECT_EQ(result.kind(), EncodedData::EMPTY) << algorithm->uri() << ": " << c.what;
        EXPECT_EQ(result.size(), 0u);
    }
    // Each refusal says why, as a notice.
    EXPECT_TRUE(log.contains("DeltazlibIntArrayEncodingAlgorithm: 8000000000 inflated bytes cannot come from " +
                                 std::to_string(goodDelta.size() - 5) + " bytes of zlib data\n",
                             LOG_NOTICE))
        << log.all();
    EXPECT_TRUE(log.contains("QuantizedzlibFloatArrayEncodingAlgorithm: 9 exponent and 10 mantissa bits do not "
                             "describe a float\n"));
    EXPECT_TRUE(log.contains("ZlibFloatArrayEncodingAlgorithm: a payload of 7 bytes is shorter than its 8-byte "
                             "header\n"));
}

TEST(ArrayDecoders, ReadExactlyTheirLengthFromTheStream)
{
    const std::string payload = deltaPayload({4, 5, 6}, 1);
    std::istringstream in(payload + "next");
    DeltazlibIntArrayEncodingAlgorithm algorithm;
    EXPECT_EQ(algorithm.decodeFromInputStream(unsigned(payload.size()), in).intArray(),
              (std::vector<std::int32_t>{4, 5, 6}));
    std::string rest;
    in >> rest;
    EXPECT_EQ(rest, "next");
    // A stream that ends early fails in the inflation.
    std::istringstream shortIn(payload.substr(0, payload.size() - 2));
    EXPECT_THROW(algorithm.decodeFromInputStream(unsigned(payload.size()), shortIn), EncodingAlgorithmException);
}

TEST(ArrayDecoders, RegisteredByStandardURIAndDecodeOnly)
{
    struct Case {
        const char*           uri;
        const std::type_info& type;
    };
    const Case cases[] = {
        {"encoder://web3d.org/DeltazlibIntArrayEncoder", typeid(DeltazlibIntArrayEncodingAlgorithm)},
        {"encoder://web3d.org/QuantizedzlibFloatArrayEncoder", typeid(QuantizedzlibFloatArrayEncodingAlgorithm)},
        {"encoder://web3d.org/QuantizedzlibFloatArrayEncoder_v2", typeid(QuantizedzlibFloatArrayEncodingAlgorithmV2)},
        {"encoder://web3d.org/zlibFloatArrayEncoder", typeid(ZlibFloatArrayEncodingAlgorithm)},
    };
    for (const Case& c : cases) {
        std::unique_ptr<EncodingAlgorithm> algorithm = Xeltra::EncodingAlgorithmRegistry::the().create(c.uri);
        ASSERT_NE(algorithm, nullptr) << c.uri;
        EncodingAlgorithm& made = *algorithm;
        EXPECT_EQ(typeid(made), c.type);
        EXPECT_EQ(algorithm->uri(), c.uri);
        EXPECT_NE(Xeltra::EncodingAlgorithmRegistry::the().create(c.uri).get(), algorithm.get());  // a fresh object each time

        std::ostringstream out;
        for (auto encode : {+[](EncodingAlgorithm& a, std::ostream& o) { a.encodeToOutputStream(false, EncodedData(), o); },
                            +[](EncodingAlgorithm& a, std::ostream& o) {
                                static_cast<ZlibArrayEncodingAlgorithm&>(a).encodeToOutputStream(true, "1 2 3", o);
                            }}) {
            try {
                encode(*algorithm, out);
                ADD_FAILURE() << c.uri << " encoded";
            } catch (const EncodingAlgorithmException& error) {
                EXPECT_EQ(error.message(), "Not implemented");
            }
        }
        EXPECT_TRUE(out.str().empty());
    }
}

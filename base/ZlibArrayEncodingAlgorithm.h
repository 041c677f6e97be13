#ifndef ORVANE_BASE_ZLIBARRAYENCODINGALGORITHM_H
#define ORVANE_BASE_ZLIBARRAYENCODINGALGORITHM_H

#include "base/OrvaneExport.h"
#include "platform/xeltra/EncodedData.h"
#include "platform/xeltra/EncodingAlgorithm.h"

#include <cstddef>
#include <cstdint>
#include <iosfwd>
#include <string>
#include <vector>

namespace Orvane {

// What the X3D compressed-binary array algorithms share: a big-endian header followed by one
// zlib stream, decoding only, and payloads that are untrusted as a rule. Every header is checked
// against what its bytes can possibly hold before anything is allocated for it, and every failure
// leaves the result empty and throws Xeltra::EncodingAlgorithmException with the algorithm's text.
class ORVANE_API ZlibArrayEncodingAlgorithm : public Xeltra::EncodingAlgorithm {
public:
    ~ZlibArrayEncodingAlgorithm() override;

    // The algorithms serve reading only: both forms always throw "Not implemented".
    void encodeToOutputStream(bool flag, const Xeltra::EncodedData& data, std::ostream& out) override;
    void encodeToOutputStream(bool flag, const std::string& text, std::ostream& out);

    // The most that zlib data of streamLength bytes can inflate to: deflate's densest code spends
    // two bits on a 258-byte match, about 1032:1.
    static std::uint64_t maxInflatedSize(std::size_t streamLength) { return std::uint64_t(streamLength) * 1032u; }

protected:
    ZlibArrayEncodingAlgorithm(const char* name, const char* failure);

    // Reads the payload into buffer; fails unless at least headerSize bytes arrived.
    void readPayloadWithHeader(std::istream& in, unsigned int length, std::size_t headerSize,
                               std::vector<unsigned char>& buffer);
    // Fails unless size bytes could come out of streamLength bytes of zlib data.
    void checkInflatable(std::uint64_t size, std::size_t streamLength);
    // Fails when a header count or size, read as a signed 32-bit number, is negative.
    void checkNotNegative(std::int32_t value, const char* what);
    // Inflates the whole stream in one call into size bytes at into; fails unless it fills them exactly.
    void inflate(const unsigned char* stream, std::size_t streamLength, void* into, std::uint64_t size);
    // Leaves the result empty, logs why (as a notice) and throws the algorithm's failure text.
    [[noreturn]] void reject(const char* format, ...) __attribute__((format(printf, 2, 3)));

    // Fails unless E exponent and M mantissa bits describe numbers a float can hold: 1 to 8
    // exponent bits (the bias 2^(E-1) needs one), 0 to 23 mantissa bits.
    void checkQuantization(int exponentBits, int mantissaBits);
    // The quantised forms after their headers: inflates the stream after headerSize bytes of
    // payload into size bytes and rebuilds count floats of E + M + 1 bits each, packed most
    // significant bit first; bits beyond size read as zero. keepSign false ignores each value's
    // top bit. The payload is released once inflated.
    Xeltra::EncodedData& decodeQuantized(std::vector<unsigned char>& payload, std::size_t headerSize,
                                         int exponentBits, int mantissaBits, bool keepSign, std::int32_t count,
                                         std::uint64_t size);

    static std::uint32_t bigEndian32(const unsigned char* bytes)
    {
        return std::uint32_t(bytes[0]) << 24 | std::uint32_t(bytes[1]) << 16 | std::uint32_t(bytes[2]) << 8 | bytes[3];
    }

    Xeltra::EncodedData _result;

private:
    const char* _name;
    const char* _failure;
};

} // namespace Orvane

#endif

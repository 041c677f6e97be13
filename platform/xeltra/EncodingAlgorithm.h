#ifndef ORVANE_PLATFORM_XELTRA_ENCODINGALGORITHM_H
#define ORVANE_PLATFORM_XELTRA_ENCODINGALGORITHM_H

#include "base/OrvaneExport.h"
#include "platform/xeltra/EncodedData.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>
#include <vector>

namespace Xeltra {

// An encoding algorithm of the binary XML reader and writer: it turns the octets of one
// encoded value into typed data and back. Every failure is an EncodingAlgorithmException.
class ORVANE_API EncodingAlgorithm {
public:
    EncodingAlgorithm();
    virtual ~EncodingAlgorithm();

    EncodingAlgorithm(const EncodingAlgorithm&) = delete;
    EncodingAlgorithm& operator=(const EncodingAlgorithm&) = delete;

    // Reads length octets from in and decodes them. The result is the algorithm's own value,
    // valid until the next call on the same object.
    virtual EncodedData& decodeFromInputStream(unsigned int length, std::istream& in) = 0;
    // Writes the encoded octets of data. The flag is passed through from the writer; an
    // algorithm that does not use it ignores it.
    virtual void encodeToOutputStream(bool flag, const EncodedData& data, std::ostream& out) = 0;

    // The URI under which the algorithm is known to documents and to the registry.
    virtual std::string_view uri() const = 0;

    // Decodes octets held in memory, through the same virtual operation, without copying them.
    EncodedData& decodeFromBytes(const void* bytes, std::size_t length);
    EncodedData& decodeFromBytes(std::string_view bytes) { return decodeFromBytes(bytes.data(), bytes.size()); }
    // Encodes into a string, through the same virtual operation.
    std::string encodeToBytes(bool flag, const EncodedData& data);

protected:
    // Reads up to length octets into buffer and returns how many arrived. The buffer grows with
    // what is actually read, so a false length in a document cannot reserve memory it does
    // not hold. A short read is left for the caller (or its decompressor) to notice.
    static std::size_t readPayload(std::istream& in, unsigned int length, std::vector<unsigned char>& buffer);

    [[noreturn]] static void fail(const char* message);
};

} // namespace Xeltra

#endif

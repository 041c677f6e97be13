#include "platform/xeltra/EncodingAlgorithm.h"

#include "platform/xeltra/EncodingAlgorithmException.h"

#include <algorithm>
#include <climits>
#include <istream>
#include <sstream>
#include <streambuf>

namespace Xeltra {

namespace {

// A read-only stream buffer over memory that someone else owns.
class MemoryBuffer : public std::streambuf {
public:
    MemoryBuffer(const char* data, std::size_t length)
    {
        char* begin = const_cast<char*>(data);  // the get area is never written through
        setg(begin, begin, begin + length);
    }
};

} // namespace

EncodingAlgorithm::EncodingAlgorithm() = default;
EncodingAlgorithm::~EncodingAlgorithm() = default;

EncodedData& EncodingAlgorithm::decodeFromBytes(const void* bytes, std::size_t length)
{
    static const char nothing = 0;
    if (!bytes)
        length = 0;
    // The stream interface counts in unsigned int; longer input is cut there.
    unsigned int count = static_cast<unsigned int>(std::min<std::size_t>(length, UINT_MAX));
    MemoryBuffer buffer(bytes ? static_cast<const char*>(bytes) : &nothing, count);
    std::istream in(&buffer);
    return decodeFromInputStream(count, in);
}

std::string EncodingAlgorithm::encodeToBytes(bool flag, const EncodedData& data)
{
    std::ostringstream out;
    encodeToOutputStream(flag, data, out);
    return std::move(out).str();
}

std::size_t EncodingAlgorithm::readPayload(std::istream& in, unsigned int length, std::vector<unsigned char>& buffer)
{
    // What the stream already holds in memory is there for certain and sizes the first read,
    // so that a payload in memory is copied once.
    std::streamsize ready = in.rdbuf() ? in.rdbuf()->in_avail() : 0;
    const std::size_t firstChunk = std::max<std::size_t>(64 * 1024, ready > 0 ? std::size_t(ready) : 0);
    buffer.clear();
    std::size_t got = 0;
    while (got < length && in) {
        std::size_t room = std::min<std::size_t>(length, std::max(firstChunk, got * 2));
        buffer.resize(room);
        in.read(reinterpret_cast<char*>(buffer.data() + got), static_cast<std::streamsize>(room - got));
        got += static_cast<std::size_t>(in.gcount());
    }
    buffer.resize(got);
    return got;
}

void EncodingAlgorithm::fail(const char* message)
{
    throw EncodingAlgorithmException(message ? message : "");
}

} // namespace Xeltra

#ifndef ORVANE_PLATFORM_PORDANE_IBINSTREAM_H
#define ORVANE_PLATFORM_PORDANE_IBINSTREAM_H

#include "base/OrvaneExport.h"
#include "platform/pordane/ByteOrder.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace Pordane {

// Reads values in the layout that obinstream writes.
//
// Nothing is ever read past the end of the data. A value that does not fit in the bytes left
// puts the stream into the fail state: that value and every later one read from the stream
// comes out as zero (false, empty string), and the position stays where the failed value
// began. A string whose stated length exceeds the bytes left fails the same way, before
// anything is allocated for it.
class ORVANE_API ibinstream {
public:
    // Reads the bytes in place: they must outlive the stream.
    explicit ibinstream(std::string_view data);
    ibinstream(const char* data, std::size_t size);
    // Takes the bytes over, so a temporary string can be read safely.
    explicit ibinstream(std::string&& data);
    ~ibinstream();

    // The stream points into its own or its caller's bytes; copies would dangle too easily.
    ibinstream(const ibinstream&) = delete;
    ibinstream& operator=(const ibinstream&) = delete;

    bool good() const { return !_fail; }
    bool fail() const { return _fail; }
    explicit operator bool() const { return !_fail; }

    std::size_t size() const { return _size; }
    std::size_t position() const { return _pos; }
    std::size_t remaining() const { return _size - _pos; }
    bool        atEnd() const { return _pos == _size; }

    // Copies count bytes out, all or nothing; on failure the target is zero-filled.
    bool read(void* target, std::size_t count) const
    {
        if (_fail || _size - _pos < count) [[unlikely]] {
            _fail = true;
            if (count)
                std::memset(target, 0, count);
            return false;
        }
        if (count)
            std::memcpy(target, _data + _pos, count);
        _pos += count;
        return true;
    }

    template <class U>
    U getWord() const
    {
        U value;
        if (_fail || _size - _pos < sizeof(U)) [[unlikely]] {
            _fail = true;
            return U(0);
        }
        std::memcpy(&value, _data + _pos, sizeof(U));
        _pos += sizeof(U);
        return fromLittleEndian(value);
    }

    bool getString(std::string& text) const;

private:
    std::string         _owned;
    const char*         _data;
    std::size_t         _size;
    mutable std::size_t _pos  = 0;
    mutable bool        _fail = false;
};

inline const ibinstream& operator>>(const ibinstream& in, bool& value)
{
    value = in.getWord<std::uint8_t>() != 0;
    return in;
}

inline const ibinstream& operator>>(const ibinstream& in, unsigned char& value)
{
    value = in.getWord<std::uint8_t>();
    return in;
}

inline const ibinstream& operator>>(const ibinstream& in, unsigned short& value)
{
    value = in.getWord<std::uint16_t>();
    return in;
}

inline const ibinstream& operator>>(const ibinstream& in, int& value)
{
    value = static_cast<int>(static_cast<std::int32_t>(in.getWord<std::uint32_t>()));
    return in;
}

inline const ibinstream& operator>>(const ibinstream& in, long& value)
{
    value = static_cast<long>(static_cast<std::int64_t>(in.getWord<std::uint64_t>()));
    return in;
}

inline const ibinstream& operator>>(const ibinstream& in, float& value)
{
    value = std::bit_cast<float>(in.getWord<std::uint32_t>());
    return in;
}

inline const ibinstream& operator>>(const ibinstream& in, double& value)
{
    value = std::bit_cast<double>(in.getWord<std::uint64_t>());
    return in;
}

inline const ibinstream& operator>>(const ibinstream& in, std::string& value)
{
    in.getString(value);
    return in;
}

} // namespace Pordane

#endif

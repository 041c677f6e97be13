#ifndef ORVANE_PLATFORM_PORDANE_OBINSTREAM_H
#define ORVANE_PLATFORM_PORDANE_OBINSTREAM_H

#include "base/OrvaneExport.h"
#include "platform/pordane/ByteOrder.h"

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <string>
#include <string_view>

namespace Pordane {

// Collects the binary form of values in a string. The layout is fixed: every scalar is
// little-endian; bool and unsigned char take one byte, unsigned short two, int and float four,
// long and double eight; a string is its length as a 32-bit unsigned number, then its bytes.
//
// The operators take the stream by const reference (so a temporary stream can be written to),
// hence the mutable internals. Writing one scalar is inline and allocates only when the
// buffer has to grow; reserve() avoids even that when the final size is known.
class ORVANE_API obinstream {
public:
    obinstream();
    explicit obinstream(std::size_t reserveBytes);
    ~obinstream();

    obinstream(const obinstream&) = default;
    obinstream& operator=(const obinstream&) = default;
    obinstream(obinstream&&) noexcept = default;
    obinstream& operator=(obinstream&&) noexcept = default;

    // Makes room for this many bytes in total.
    void reserve(std::size_t bytes) const { _buf.reserve(bytes); }

    // The bytes written so far.
    const std::string& str() const
    {
        _buf.resize(_size);
        return _buf;
    }
    // Hands the bytes over and leaves the stream empty.
    std::string take();
    void        clear();

    std::size_t size() const { return _size; }
    // False once a value could not be written (a string longer than a 32-bit length allows).
    bool good() const { return !_fail; }
    bool fail() const { return _fail; }

    void write(const void* bytes, std::size_t count) const
    {
        if (count == 0)
            return;
        if (_buf.size() - _size < count) [[unlikely]]
            grow(count);
        std::memcpy(_buf.data() + _size, bytes, count);
        _size += count;
    }

    template <class U>
    void putWord(U value) const
    {
        value = toLittleEndian(value);
        if (_buf.size() - _size < sizeof(U)) [[unlikely]]
            grow(sizeof(U));
        std::memcpy(_buf.data() + _size, &value, sizeof(U));
        _size += sizeof(U);
    }

    void putString(std::string_view text) const
    {
        if (text.size() > UINT32_MAX) [[unlikely]] {
            _fail = true;  // nothing is written, so the stream stays readable
            return;
        }
        putWord(static_cast<std::uint32_t>(text.size()));
        write(text.data(), text.size());
    }

private:
    void grow(std::size_t more) const;

    // _buf holds the output in [0, _size); the rest is room already made for later writes.
    mutable std::string _buf;
    mutable std::size_t _size = 0;
    mutable bool        _fail = false;
};

inline const obinstream& operator<<(const obinstream& out, bool value)
{
    out.putWord<std::uint8_t>(value ? 1u : 0u);
    return out;
}

inline const obinstream& operator<<(const obinstream& out, unsigned char value)
{
    out.putWord<std::uint8_t>(value);
    return out;
}

inline const obinstream& operator<<(const obinstream& out, unsigned short value)
{
    out.putWord<std::uint16_t>(value);
    return out;
}

inline const obinstream& operator<<(const obinstream& out, int value)
{
    out.putWord(static_cast<std::uint32_t>(value));
    return out;
}

inline const obinstream& operator<<(const obinstream& out, long value)
{
    out.putWord(static_cast<std::uint64_t>(static_cast<std::int64_t>(value)));
    return out;
}

inline const obinstream& operator<<(const obinstream& out, float value)
{
    out.putWord(std::bit_cast<std::uint32_t>(value));
    return out;
}

inline const obinstream& operator<<(const obinstream& out, double value)
{
    out.putWord(std::bit_cast<std::uint64_t>(value));
    return out;
}

inline const obinstream& operator<<(const obinstream& out, std::string_view value)
{
    out.putString(value);
    return out;
}

inline const obinstream& operator<<(const obinstream& out, const std::string& value)
{
    out.putString(value);
    return out;
}

// Without this a literal would silently be written as a bool.
inline const obinstream& operator<<(const obinstream& out, const char* value)
{
    out.putString(value ? std::string_view(value) : std::string_view());
    return out;
}

// A char would be promoted to a four-byte int, and any other pointer turned into a bool: both
// are almost certainly mistakes, so neither compiles.
const obinstream& operator<<(const obinstream& out, char value) = delete;
template <class T>
const obinstream& operator<<(const obinstream& out, const T* value) = delete;

} // namespace Pordane

#endif

#include "platform/pordane/obinstream.h"

#include <algorithm>
#include <utility>

namespace Pordane {

obinstream::obinstream() = default;

obinstream::obinstream(std::size_t reserveBytes)
{
    _buf.reserve(reserveBytes);
}

obinstream::~obinstream() = default;

std::string obinstream::take()
{
    _buf.resize(_size);
    std::string bytes = std::move(_buf);
    _buf.clear();
    _size = 0;
    _fail = false;
    return bytes;
}

void obinstream::clear()
{
    _buf.clear();
    _size = 0;
    _fail = false;
}

void obinstream::grow(std::size_t more) const
{
    // Double the room, and use any capacity that reserve() already made, so a long run of
    // small writes costs amortised constant time.
    std::size_t needed = _size + more;
    std::size_t size   = std::max({needed, _buf.size() * 2, _buf.capacity(), std::size_t(64)});
    _buf.resize(size);
}

} // namespace Pordane

#include "platform/pordane/ibinstream.h"

#include <utility>

namespace Pordane {

ibinstream::ibinstream(std::string_view data) : _data(data.data()), _size(data.size()) {}

ibinstream::ibinstream(const char* data, std::size_t size) : _data(data ? data : ""), _size(data ? size : 0) {}

ibinstream::ibinstream(std::string&& data) : _owned(std::move(data)), _data(_owned.data()), _size(_owned.size()) {}

ibinstream::~ibinstream() = default;

bool ibinstream::getString(std::string& text) const
{
    std::size_t start  = _pos;
    std::uint32_t length = getWord<std::uint32_t>();
    // The length is checked against what is left before anything is allocated, so a corrupt
    // length cannot make us reserve gigabytes.
    if (_fail || _size - _pos < length) {
        _fail = true;
        _pos  = start;
        text.clear();
        return false;
    }
    text.assign(_data + _pos, length);
    _pos += length;
    return true;
}

} // namespace Pordane

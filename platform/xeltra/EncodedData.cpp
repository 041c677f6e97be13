#include "platform/xeltra/EncodedData.h"

namespace Xeltra {

EncodedData::EncodedData() = default;
EncodedData::~EncodedData() = default;

std::size_t EncodedData::size() const
{
    switch (_kind) {
    case BYTES: return _bytes.size();
    case INT_ARRAY: return _ints.size();
    case FLOAT_ARRAY: return _floats.size();
    case EMPTY: break;
    }
    return 0;
}

void EncodedData::clear()
{
    // Swap with empty containers: a decoder's large result should not linger after a clear.
    std::vector<std::int32_t>().swap(_ints);
    std::vector<float>().swap(_floats);
    std::string().swap(_bytes);
    _kind = EMPTY;
}

// Refilling the current kind keeps its capacity, so an algorithm that
// decodes many arrays of the same kind reuses its storage.
std::vector<std::int32_t>& EncodedData::makeIntArray()
{
    if (_kind != INT_ARRAY)
        clear();
    _kind = INT_ARRAY;
    _ints.clear();
    return _ints;
}

std::vector<float>& EncodedData::makeFloatArray()
{
    if (_kind != FLOAT_ARRAY)
        clear();
    _kind = FLOAT_ARRAY;
    _floats.clear();
    return _floats;
}

std::string& EncodedData::makeBytes()
{
    if (_kind != BYTES)
        clear();
    _kind = BYTES;
    _bytes.clear();
    return _bytes;
}

} // namespace Xeltra

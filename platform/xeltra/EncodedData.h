#ifndef ORVANE_PLATFORM_XELTRA_ENCODEDDATA_H
#define ORVANE_PLATFORM_XELTRA_ENCODEDDATA_H

#include "base/OrvaneExport.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Xeltra {

// The value an encoding algorithm produces when decoding, or takes when encoding: an array of
// 32-bit integers, an array of 32-bit floats, or plain bytes. It holds one kind at a time;
// the make...() calls switch the kind and hand out the emptied storage to be filled.
class ORVANE_API EncodedData {
public:
    enum Kind { EMPTY, BYTES, INT_ARRAY, FLOAT_ARRAY };

    EncodedData();
    ~EncodedData();

    EncodedData(const EncodedData&) = default;
    EncodedData& operator=(const EncodedData&) = default;
    EncodedData(EncodedData&&) noexcept = default;
    EncodedData& operator=(EncodedData&&) noexcept = default;

    Kind kind() const { return _kind; }
    // Elements of the current kind (bytes for BYTES).
    std::size_t size() const;
    bool        empty() const { return size() == 0; }

    // Frees the storage of every kind and returns to EMPTY.
    void clear();

    std::vector<std::int32_t>& makeIntArray();
    std::vector<float>&        makeFloatArray();
    std::string&               makeBytes();

    // The storage of a kind; empty unless it is the current one.
    const std::vector<std::int32_t>& intArray() const { return _ints; }
    const std::vector<float>&        floatArray() const { return _floats; }
    const std::string&               bytes() const { return _bytes; }

private:
    Kind                      _kind = EMPTY;
    std::vector<std::int32_t> _ints;
    std::vector<float>        _floats;
    std::string               _bytes;
};

} // namespace Xeltra

#endif

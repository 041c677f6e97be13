#ifndef ORVANE_BASE_ZLIBFLOATARRAYENCODINGALGORITHM_H
#define ORVANE_BASE_ZLIBFLOATARRAYENCODINGALGORITHM_H

#include "base/ZlibArrayEncodingAlgorithm.h"

#include <string_view>

namespace Orvane {

// The zlib-coded float array of the X3D compressed binary encoding. Payload: the inflated size S
// in bytes (4), count N (4), then a zlib stream. Kept as it has always behaved: the stream is
// taken from the count on, and the result is S zeros, whatever the stream holds.
class ORVANE_API ZlibFloatArrayEncodingAlgorithm final : public ZlibArrayEncodingAlgorithm {
public:
    static constexpr std::string_view algorithmURI = "encoder://web3d.org/zlibFloatArrayEncoder";

    ZlibFloatArrayEncodingAlgorithm();
    ~ZlibFloatArrayEncodingAlgorithm() override;

    // A FLOAT_ARRAY of S zeros; failure text "Could not decompress stream".
    Xeltra::EncodedData& decodeFromInputStream(unsigned int length, std::istream& in) override;
    std::string_view uri() const override { return algorithmURI; }
};

} // namespace Orvane

#endif

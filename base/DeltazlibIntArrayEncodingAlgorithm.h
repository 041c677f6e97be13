#ifndef ORVANE_BASE_DELTAZLIBINTARRAYENCODINGALGORITHM_H
#define ORVANE_BASE_DELTAZLIBINTARRAYENCODINGALGORITHM_H

#include "base/ZlibArrayEncodingAlgorithm.h"

#include <string_view>

namespace Orvane {

// The delta- and zlib-coded 32-bit integer array of the X3D compressed binary encoding (indices,
// mostly). Payload: count N (4 bytes), span S (a signed byte), then a zlib stream of N big-endian
// words, each the value plus one, each after the first S the difference to the value S places back.
class ORVANE_API DeltazlibIntArrayEncodingAlgorithm final : public ZlibArrayEncodingAlgorithm {
public:
    static constexpr std::string_view algorithmURI = "encoder://web3d.org/DeltazlibIntArrayEncoder";

    DeltazlibIntArrayEncodingAlgorithm();
    ~DeltazlibIntArrayEncodingAlgorithm() override;

    // An INT_ARRAY of N values; failure text "Could not decompress stream".
    Xeltra::EncodedData& decodeFromInputStream(unsigned int length, std::istream& in) override;
    std::string_view uri() const override { return algorithmURI; }
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_QUANTIZEDZLIBFLOATARRAYENCODINGALGORITHMV2_H
#define ORVANE_BASE_QUANTIZEDZLIBFLOATARRAYENCODINGALGORITHMV2_H

#include "base/ZlibArrayEncodingAlgorithm.h"

#include <string_view>

namespace Orvane {

// The quantised, zlib-coded float array of the X3D compressed binary encoding, second form.
// Payload: a signed flag (bit 7) and exponent bits E (bits 0 to 6) in one byte, mantissa bits M
// (a signed byte), count N (4 bytes), then a zlib stream of N values of E + M + 1 bits each.
// Without the signed flag every value's top bit is ignored and no value is negative.
class ORVANE_API QuantizedzlibFloatArrayEncodingAlgorithmV2 final : public ZlibArrayEncodingAlgorithm {
public:
    static constexpr std::string_view algorithmURI = "encoder://web3d.org/QuantizedzlibFloatArrayEncoder_v2";

    QuantizedzlibFloatArrayEncodingAlgorithmV2();
    ~QuantizedzlibFloatArrayEncodingAlgorithmV2() override;

    // A FLOAT_ARRAY of N values; failure text "Could not decompress stream".
    Xeltra::EncodedData& decodeFromInputStream(unsigned int length, std::istream& in) override;
    std::string_view uri() const override { return algorithmURI; }
};

} // namespace Orvane

#endif

#ifndef ORVANE_BASE_QUANTIZEDZLIBFLOATARRAYENCODINGALGORITHM_H
#define ORVANE_BASE_QUANTIZEDZLIBFLOATARRAYENCODINGALGORITHM_H

#include "base/ZlibArrayEncodingAlgorithm.h"

#include <string_view>

namespace Orvane {

// The quantised, zlib-coded float array of the X3D compressed binary encoding, first form.
// Payload: exponent bits E (1 byte), mantissa bits M (1 byte), the inflated size in bytes (4),
// count N (4), then a zlib stream of N values of E + M + 1 bits each: sign, exponent, mantissa,
// most significant bit first.
class ORVANE_API QuantizedzlibFloatArrayEncodingAlgorithm final : public ZlibArrayEncodingAlgorithm {
public:
    static constexpr std::string_view algorithmURI = "encoder://web3d.org/QuantizedzlibFloatArrayEncoder";

    QuantizedzlibFloatArrayEncodingAlgorithm();
    ~QuantizedzlibFloatArrayEncodingAlgorithm() override;

    // A FLOAT_ARRAY of N values; failure text "Error while decoding QuantizedzlibFloatArray".
    Xeltra::EncodedData& decodeFromInputStream(unsigned int length, std::istream& in) override;
    std::string_view uri() const override { return algorithmURI; }
};

} // namespace Orvane

#endif

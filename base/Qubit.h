#ifndef ORVANE_BASE_QUBIT_H
#define ORVANE_BASE_QUBIT_H

#include "base/OrvaneExport.h"

#include <complex>
#include <string>

namespace Orvane {

// A qubit alpha|0> + beta|1>, or no state at all ("UNSET"), which is also the default.
// The amplitudes are kept as given; nothing normalises them.
class ORVANE_API Qubit {
public:
    using Amplitude = std::complex<double>;

    Qubit() = default;
    Qubit(const Amplitude& alpha, const Amplitude& beta) : _alpha(alpha), _beta(beta), _set(true) {}

    bool isSet() const { return _set; }
    void unset();
    void set(const Amplitude& alpha, const Amplitude& beta);

    // Both 0 while unset.
    const Amplitude& alpha() const { return _alpha; }
    const Amplitude& beta() const { return _beta; }

    // Two unset qubits are equal; a set and an unset one never are.
    bool operator==(const Qubit& other) const;

    // Text form: "UNSET", or "re(alpha) im(alpha) re(beta) im(beta)", each number "%g".
    std::string toText() const;
    void        appendText(std::string& out) const;

    // Reads the text form from text (leading white space and commas skipped). Missing numbers
    // after the first are 0; a null or blank text gives an unset qubit. Text that is neither
    // "UNSET" nor starts with a number leaves the qubit unchanged and returns false.
    // *end, when given, receives the position after what was read.
    bool fromText(const char* text, const char** end = nullptr);

private:
    Amplitude _alpha;
    Amplitude _beta;
    bool      _set = false;
};

} // namespace Orvane

#endif

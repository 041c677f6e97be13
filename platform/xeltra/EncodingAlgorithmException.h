#ifndef ORVANE_PLATFORM_XELTRA_ENCODINGALGORITHMEXCEPTION_H
#define ORVANE_PLATFORM_XELTRA_ENCODINGALGORITHMEXCEPTION_H

#include "base/OrvaneExport.h"

#include <exception>
#include <string>

namespace Xeltra {

// The failure of an encoding algorithm. It is the one exception that the library lets pass to
// its callers: the document reader that drives the algorithms expects it.
class ORVANE_API EncodingAlgorithmException : public std::exception {
public:
    explicit EncodingAlgorithmException(std::string message);
    ~EncodingAlgorithmException() override;

    EncodingAlgorithmException(const EncodingAlgorithmException&) = default;
    EncodingAlgorithmException& operator=(const EncodingAlgorithmException&) = default;

    const char*        what() const noexcept override;
    const std::string& message() const noexcept { return _message; }

private:
    std::string _message;
};

} // namespace Xeltra

#endif

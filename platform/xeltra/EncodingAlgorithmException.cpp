#include "platform/xeltra/EncodingAlgorithmException.h"

#include <utility>

namespace Xeltra {

EncodingAlgorithmException::EncodingAlgorithmException(std::string message) : _message(std::move(message)) {}

// Defined here so that the type information lives in the library once, and a catch in an
// application matches what the library throws.
EncodingAlgorithmException::~EncodingAlgorithmException() = default;

const char* EncodingAlgorithmException::what() const noexcept
{
    return _message.c_str();
}

} // namespace Xeltra

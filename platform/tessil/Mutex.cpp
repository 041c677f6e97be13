#include "platform/tessil/Mutex.h"

namespace Tessil {

Mutex::Mutex() = default;
Mutex::~Mutex() = default;

} // namespace Tessil

#include "base/PCMSound.h"

namespace Orvane {

std::size_t PCMSound::frameCount() const
{
    return _channels > 0 ? _samples.size() / std::size_t(_channels) : 0;
}

double PCMSound::duration() const
{
    if (_sampleRate <= 0)
        return 0.0;
    return double(frameCount()) / double(_sampleRate);
}

} // namespace Orvane

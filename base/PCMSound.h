#ifndef ORVANE_BASE_PCMSOUND_H
#define ORVANE_BASE_PCMSOUND_H

#include "base/OrvaneExport.h"

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace Orvane {

// A sound as 16-bit PCM samples, channels interleaved (frame by frame).
class ORVANE_API PCMSound {
public:
    PCMSound() = default;  // no samples, 0 channels, rate 0
    PCMSound(std::vector<int16_t> samples, int channels, int sampleRate)
        : _samples(std::move(samples)), _channels(channels), _sampleRate(sampleRate)
    {
    }

    const std::vector<int16_t>& samples() const { return _samples; }
    std::vector<int16_t>&       samples() { return _samples; }
    void setSamples(std::vector<int16_t> samples) { _samples = std::move(samples); }

    int  channels() const { return _channels; }
    void setChannels(int channels) { _channels = channels; }
    int  sampleRate() const { return _sampleRate; }  // frames per second
    void setSampleRate(int rate) { _sampleRate = rate; }

    bool empty() const { return _samples.empty(); }
    // Whole frames (a trailing partial frame does not count); 0 without channels.
    std::size_t frameCount() const;
    // Length in seconds; 0 without channels or sample rate.
    double duration() const;

    bool operator==(const PCMSound&) const = default;

private:
    std::vector<int16_t> _samples;
    int                  _channels = 0;
    int                  _sampleRate = 0;
};

} // namespace Orvane

#endif

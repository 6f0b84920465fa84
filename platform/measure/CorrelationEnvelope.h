#pragma once

// How strongly a known sound starts at each frame of a recording: the envelope of their
// cross-correlation. The envelope (rather than the correlation itself) peaks where the sound
// starts even when a speaker or microphone turns its phase or polarity.

#include "Fft.h"

#include <span>
#include <vector>

namespace orvanta::measure {

class Correlator
{
public:
    // Transforms the recording once, for any number of sounds up to maxSignalFrames long.
    Correlator(std::span<const float> recording, std::size_t maxSignalFrames);

    // One value per frame of the recording: entry n is large when the signal starts at frame n.
    std::vector<float> envelope(std::span<const float> signal) const;

private:
    std::size_t frames;
    Spectrum recorded;
};

} // namespace orvanta::measure

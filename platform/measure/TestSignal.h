#pragma once

// The short sounds a measurement plays: a sweep from 1 kHz to 7 kHz (up for the primary
// speaker, down for the secondary one). A sweep correlates with itself in one sharp peak, and
// the two directions hardly correlate with each other, so each speaker is told apart even when
// its sound arrives late. The band suits small and Bluetooth speakers and laptop microphones.

#include <cstddef>
#include <vector>

namespace orvanta::measure {

inline constexpr int kRate = 48000;
inline constexpr std::size_t kSignalFrames = kRate / 10; // 100 ms
// A moderate level: about -12 dB below full scale.
inline constexpr float kSignalLevel = 0.25f;

enum class Sweep
{
    Rising,
    Falling,
};

// Mono samples at kRate, with softened ends so that neither edge is a click.
std::vector<float> testSignal(Sweep sweep);

} // namespace orvanta::measure

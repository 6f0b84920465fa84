#pragma once

// Finding where a known sound arrives in a recording, from the envelope of their
// cross-correlation (CorrelationEnvelope.h). A real arrival is a sharp peak: far above the
// envelope's usual level across the recording, and far above its level in the tens of
// milliseconds around it. The second test turns away the broad hump that a different sound
// (the other speaker's sweep) leaves behind.

#include <cstddef>
#include <optional>
#include <vector>

namespace orvanta::measure {

struct Arrival
{
    double frame = 0.0;     // where the sound starts, to a fraction of a frame
    double strength = 0.0;  // the peak over the envelope's median across the recording
    double sharpness = 0.0; // the peak over the envelope's median within 50 ms of it
};

// Found: strong and sharp enough that noise and the other sweep are ruled out.
bool isFound(const Arrival& arrival);

// The envelope's median: its level where no sound of interest starts.
float backgroundLevel(const std::vector<float>& envelope);

// Where the first of `teeth` arrivals lies when they come `period` frames apart, to within a
// millisecond: the position, no later than latestFirst, whose teeth hold the most energy
// together. The bound keeps a comb with a lost first arrival from sliding on by one period.
std::size_t alignComb(const std::vector<float>& envelope, std::size_t period, std::size_t teeth,
                      std::size_t latestFirst);

// The highest peak within [from, to), or nothing when the range is outside the envelope.
std::optional<Arrival> peakWithin(const std::vector<float>& envelope, std::size_t from, std::size_t to,
                                  float background);

} // namespace orvanta::measure

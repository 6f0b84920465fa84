#pragma once

// Recordings of a measurement as a microphone in a room would make them, worked out in memory:
// each speaker's track arriving with its own lateness (per repeat, if wanted), plus noise.

#include "measure/MeasurementPlan.h"

#include <array>
#include <cstdint>
#include <vector>

namespace orvanta::testing {

struct RoomSpeaker
{
    double latenessMs = 0.0;
    float gain = 1.0f;              // 0: the speaker is silent
    std::vector<double> jitterMs{}; // added to the lateness of each repeat in turn, if given
    std::vector<bool> lost{};       // repeats in which this speaker is not heard, if given
};

struct Room
{
    std::array<RoomSpeaker, 2> speakers{};
    double microphoneLatencyMs = 37.0; // the recording starts this long before the script does
    float noiseRms = 0.01f;
    std::uint32_t seed = 1;
};

std::vector<float> recordInRoom(const Room& room);

} // namespace orvanta::testing

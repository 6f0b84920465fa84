#pragma once

// When each speaker plays its sound during one measurement, on the stacked device's own clock.
// After a short lead-in of silence, each repeat plays the primary speaker's sweep and, 0.7 s
// later, the secondary one's: never both at once, and far enough apart that a speaker up to
// 0.7 s late is still told apart. The whole script lasts 6 s; recording goes on for one second
// longer, so that the latest sound and the microphone's own latency fit in.

#include "TestSignal.h"

#include <cstddef>
#include <vector>

namespace orvanta::measure {

inline constexpr std::size_t kMembers = 2;
inline constexpr std::size_t kRepeats = 4;
// A repeat lost to a sudden noise (or a lost cycle) is left out; fewer than this many are not enough.
inline constexpr std::size_t kMinimumRepeats = 3;
inline constexpr std::size_t kLeadFrames = kRate * 4 / 10;          // 0.4 s
inline constexpr std::size_t kMemberSpacingFrames = kRate * 7 / 10; // 0.7 s
inline constexpr std::size_t kRepeatFrames = kMembers * kMemberSpacingFrames;
inline constexpr std::size_t kScriptFrames = kLeadFrames + kRepeats * kRepeatFrames;
inline constexpr std::size_t kRecordingFrames = kScriptFrames + kRate;

// The frame of the script at which a member (0 primary, 1 secondary) starts its sweep in a repeat.
constexpr std::size_t scheduledStart(std::size_t member, std::size_t repeat)
{
    return kLeadFrames + repeat * kRepeatFrames + member * kMemberSpacingFrames;
}

// The sweep of a member.
std::vector<float> memberSignal(std::size_t member);

// What a member plays for the whole script: silence, with its sweep at each of its starts.
std::vector<float> memberTrack(std::size_t member);

} // namespace orvanta::measure

#pragma once

// What one delay measurement found, or why it found nothing usable.

#include <array>
#include <cstddef>
#include <vector>

namespace orvanta::measure {

enum class MeasurementStatus
{
    Measured,
    TooQuiet,        // the microphone heard hardly anything
    TooNoisy,        // it heard plenty, but not the test sounds
    NoSignal,        // one speaker's sound never arrived: see silentMember
    RepeatsDisagree, // every sound arrived, but the repeats differ by more than kMaxSpreadMs
    Failed,          // the measurement could not run: no microphone, or the speakers went away
    Cancelled,
};

// Repeats that differ by more than this are not trusted.
inline constexpr double kMaxSpreadMs = 5.0;

struct MeasurementOutcome
{
    MeasurementStatus status = MeasurementStatus::Failed;
    std::size_t silentMember = 0; // with NoSignal: 0 the primary speaker, 1 the secondary one
    // How much later each speaker is heard than the earlier of the two; the earlier one is 0.
    std::array<double, 2> latenessMs{};
    double spreadMs = 0.0;             // the largest difference between two repeats
    std::vector<double> differencesMs; // per repeat heard from both: the secondary's arrival minus the primary's
};

} // namespace orvanta::measure

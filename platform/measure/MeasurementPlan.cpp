#include "MeasurementPlan.h"

#include <algorithm>

namespace orvanta::measure {

std::vector<float> memberSignal(std::size_t member)
{
    return testSignal(member == 0 ? Sweep::Rising : Sweep::Falling);
}

std::vector<float> memberTrack(std::size_t member)
{
    const auto signal = memberSignal(member);
    std::vector<float> track(kScriptFrames, 0.0f);
    for (std::size_t repeat = 0; repeat < kRepeats; ++repeat) {
        std::copy(signal.begin(), signal.end(),
                  track.begin() + static_cast<std::ptrdiff_t>(scheduledStart(member, repeat)));
    }
    return track;
}

} // namespace orvanta::measure

#include "ProbeCue.h"

#include "DelayLine.h"

#include <algorithm>

namespace orvanta::pipewire {

std::size_t ProbeScript::frames() const
{
    std::size_t longest = 0;
    for (const auto& track : tracks) {
        longest = std::max(longest, track.second.size());
    }
    return longest;
}

void ProbeCue::beginCycle(std::uint64_t cycleStart)
{
    const ProbeScript* wanted = pending.load(std::memory_order_acquire);
    if (wanted != active) {
        active = wanted;
        origin = cycleStart;
    }
}

bool ProbeCue::render(const std::string& uid, std::uint64_t cycleStart, float* out, std::uint32_t frames) const
{
    // A stop that came in since the cycle began counts at once.
    if (!active || pending.load(std::memory_order_acquire) != active || cycleStart - origin >= active->frames()) {
        return false;
    }
    const auto track = std::find_if(active->tracks.begin(), active->tracks.end(),
                                    [&](const auto& entry) { return entry.first == uid; });
    for (std::uint32_t i = 0; i < frames; ++i) {
        const std::uint64_t at = cycleStart - origin + i;
        const bool inside = track != active->tracks.end() && at < track->second.size();
        const float sample = inside ? track->second[static_cast<std::size_t>(at)] : 0.0f;
        std::fill_n(out + static_cast<std::size_t>(i) * kChannels, kChannels, sample);
    }
    return true;
}

} // namespace orvanta::pipewire

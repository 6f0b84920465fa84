#pragma once

// What the stacked device tells its players about its latency: the latency to the member they
// hear last, which is that member's own latency downstream plus the time it is held back.

#include <spa/param/latency-utils.h>

#include <cstdint>
#include <optional>
#include <vector>

namespace orvanta::pipewire {

struct MemberLatency
{
    std::optional<spa_latency_info> downstream; // as the member's sink reports it, if it does
    std::uint32_t holdBackFrames = 0;           // at the delay line's rate
};

// The latency to report upstream, or nothing without members. A sink that reports no latency
// of its own counts as none. Members are compared at a typical cycle length; what is reported
// keeps the later member's own terms.
std::optional<spa_latency_info> reportedLatency(const std::vector<MemberLatency>& members);

} // namespace orvanta::pipewire

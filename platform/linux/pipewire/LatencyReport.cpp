#include "LatencyReport.h"

#include "DelayLine.h"

namespace orvanta::pipewire {

namespace {

constexpr double kTypicalQuantum = 1024.0;

std::uint64_t nanoseconds(std::uint32_t frames)
{
    return static_cast<std::uint64_t>(frames) * SPA_NSEC_PER_SEC / kRate;
}

spa_latency_info downstreamOf(const MemberLatency& member)
{
    return member.downstream.value_or(SPA_LATENCY_INFO(SPA_DIRECTION_INPUT));
}

// The member's latency in seconds, at a typical cycle.
double seconds(const MemberLatency& member)
{
    const auto info = downstreamOf(member);
    return static_cast<double>(info.max_quantum) * kTypicalQuantum / kRate +
           static_cast<double>(info.max_rate) / kRate +
           static_cast<double>(info.max_ns + nanoseconds(member.holdBackFrames)) / SPA_NSEC_PER_SEC;
}

} // namespace

std::optional<spa_latency_info> reportedLatency(const std::vector<MemberLatency>& members)
{
    const MemberLatency* later = nullptr;
    for (const auto& member : members) {
        if (!later || seconds(member) > seconds(*later)) {
            later = &member;
        }
    }
    if (!later) {
        return std::nullopt;
    }
    spa_latency_info info = downstreamOf(*later);
    info.min_ns += nanoseconds(later->holdBackFrames);
    info.max_ns += nanoseconds(later->holdBackFrames);
    return info;
}

} // namespace orvanta::pipewire

#include "LoopbackPlan.h"

#include <algorithm>
#include <cmath>

namespace orvanta::pulse {

HoldBacks holdBacks(const DeclaredLatencies& declared)
{
    double latest = 0.0;
    for (const auto& [uid, ms] : declared) {
        latest = std::max(latest, ms);
    }
    HoldBacks held;
    for (const auto& [uid, ms] : declared) {
        held[uid] = latest - std::max(ms, 0.0);
    }
    return held;
}

LoopbackLatencies loopbackLatencies(const DeclaredLatencies& declared, int baseMs)
{
    LoopbackLatencies plan;
    for (const auto& [uid, ms] : holdBacks(declared)) {
        plan[uid] = baseMs + static_cast<int>(std::lround(ms));
    }
    return plan;
}

DeclaredLatencies declaredFromLoopbacks(const LoopbackLatencies& running)
{
    if (running.empty()) {
        return {};
    }
    int longest = running.begin()->second;
    for (const auto& [uid, ms] : running) {
        longest = std::max(longest, ms);
    }
    DeclaredLatencies declared;
    for (const auto& [uid, ms] : running) {
        declared[uid] = static_cast<double>(longest - ms);
    }
    return declared;
}

} // namespace orvanta::pulse

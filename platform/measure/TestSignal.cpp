#include "TestSignal.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace orvanta::measure {

namespace {

constexpr double kLowHz = 1000.0;
constexpr double kHighHz = 7000.0;
constexpr std::size_t kEdgeFrames = kRate / 200; // 5 ms

double edgeGain(std::size_t i)
{
    const std::size_t fromEdge = std::min(i, kSignalFrames - 1 - i);
    if (fromEdge >= kEdgeFrames) {
        return 1.0;
    }
    return 0.5 - 0.5 * std::cos(std::numbers::pi * static_cast<double>(fromEdge) / kEdgeFrames);
}

} // namespace

std::vector<float> testSignal(Sweep sweep)
{
    const double duration = static_cast<double>(kSignalFrames) / kRate;
    const double start = sweep == Sweep::Rising ? kLowHz : kHighHz;
    const double slope = (sweep == Sweep::Rising ? kHighHz - kLowHz : kLowHz - kHighHz) / duration;
    std::vector<float> samples(kSignalFrames);
    for (std::size_t i = 0; i < kSignalFrames; ++i) {
        const double t = static_cast<double>(i) / kRate;
        const double phase = 2.0 * std::numbers::pi * (start * t + 0.5 * slope * t * t);
        samples[i] = static_cast<float>(static_cast<double>(kSignalLevel) * edgeGain(i) * std::sin(phase));
    }
    return samples;
}

} // namespace orvanta::measure

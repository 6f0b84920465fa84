#include "ArrivalFinder.h"

#include "TestSignal.h"

#include <algorithm>

namespace orvanta::measure {

namespace {

constexpr double kMinimumStrength = 10.0;
constexpr double kMinimumSharpness = 5.0;
constexpr std::size_t kBlockFrames = kRate / 1000;       // the comb works in 1 ms blocks
constexpr std::size_t kNeighbourhoodFrames = kRate / 20; // 50 ms each side of a peak

float median(std::vector<float> values)
{
    if (values.empty()) {
        return 0.0f;
    }
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

std::vector<float> blockMaxima(const std::vector<float>& envelope)
{
    std::vector<float> blocks((envelope.size() + kBlockFrames - 1) / kBlockFrames, 0.0f);
    for (std::size_t i = 0; i < envelope.size(); ++i) {
        blocks[i / kBlockFrames] = std::max(blocks[i / kBlockFrames], envelope[i]);
    }
    return blocks;
}

// The vertex of the parabola through a peak and its two neighbours, as an offset from the peak.
double parabolicOffset(double before, double peak, double after)
{
    const double curvature = before - 2.0 * peak + after;
    if (curvature >= 0.0) {
        return 0.0;
    }
    return std::clamp(0.5 * (before - after) / curvature, -0.5, 0.5);
}

} // namespace

bool isFound(const Arrival& arrival)
{
    return arrival.strength >= kMinimumStrength && arrival.sharpness >= kMinimumSharpness;
}

float backgroundLevel(const std::vector<float>& envelope)
{
    return median(envelope);
}

std::size_t alignComb(const std::vector<float>& envelope, std::size_t period, std::size_t teeth,
                      std::size_t latestFirst)
{
    const auto blocks = blockMaxima(envelope);
    const std::size_t periodBlocks = period / kBlockFrames;
    const std::size_t span = teeth == 0 ? 0 : (teeth - 1) * periodBlocks + 1;
    if (blocks.size() < span + 1) {
        return 0;
    }
    std::size_t best = 0;
    double bestScore = -1.0;
    const std::size_t lastBlock = latestFirst / kBlockFrames;
    for (std::size_t first = 0; first + span < blocks.size() && first <= lastBlock; ++first) {
        double score = 0.0;
        for (std::size_t tooth = 0; tooth < teeth; ++tooth) {
            // A block either side too: an arrival may sit on a block's edge, or drift a little.
            const std::size_t at = first + tooth * periodBlocks;
            const float left = at > 0 ? blocks[at - 1] : 0.0f;
            score += static_cast<double>(std::max({left, blocks[at], blocks[at + 1]}));
        }
        if (score > bestScore) {
            bestScore = score;
            best = first;
        }
    }
    return best * kBlockFrames;
}

std::optional<Arrival> peakWithin(const std::vector<float>& envelope, std::size_t from, std::size_t to,
                                  float background)
{
    to = std::min(to, envelope.size());
    if (from >= to) {
        return std::nullopt;
    }
    const auto top = std::max_element(envelope.begin() + static_cast<std::ptrdiff_t>(from),
                                      envelope.begin() + static_cast<std::ptrdiff_t>(to));
    const auto at = static_cast<std::size_t>(top - envelope.begin());
    Arrival arrival;
    arrival.frame = static_cast<double>(at);
    if (at > 0 && at + 1 < envelope.size()) {
        arrival.frame += parabolicOffset(static_cast<double>(envelope[at - 1]), static_cast<double>(*top),
                                         static_cast<double>(envelope[at + 1]));
    }
    const std::size_t near = at > kNeighbourhoodFrames ? at - kNeighbourhoodFrames : 0;
    const std::size_t far = std::min(envelope.size(), at + kNeighbourhoodFrames);
    const float local = median(std::vector<float>(envelope.begin() + static_cast<std::ptrdiff_t>(near),
                                                  envelope.begin() + static_cast<std::ptrdiff_t>(far)));
    const auto ratio = [&](float level) {
        return level > 0.0f ? static_cast<double>(*top) / static_cast<double>(level) : 0.0;
    };
    arrival.strength = ratio(background);
    arrival.sharpness = ratio(local);
    return arrival;
}

} // namespace orvanta::measure

#include "MeasurementAnalysis.h"

#include "ArrivalFinder.h"
#include "CorrelationEnvelope.h"
#include "MeasurementPlan.h"

#include <algorithm>
#include <cmath>

namespace orvanta::measure {

namespace {

// Below this level (about -50 dB below full scale) a recording counts as near-silence.
constexpr double kQuietRms = 0.003;
// Each repeat is looked for this far either side of the comb's tooth: far enough that a repeat
// which strays beyond the allowed spread is found where it is, and turned down for it.
constexpr std::size_t kSearchMarginFrames = kRate * 15 / 1000;
// The recording starts with the script, give or take; a first sweep is heard within a second of
// being played (the microphone's latency and the speaker's lateness together), the same sweep
// one repeat later only after 1.4 s.
constexpr std::size_t kLatestArrivalFrames = kRate;

struct MemberArrivals
{
    std::vector<double> frames; // per repeat, where found
    std::size_t found = 0;
};

double rms(std::span<const float> samples)
{
    double sum = 0.0;
    for (const float s : samples) {
        sum += static_cast<double>(s) * static_cast<double>(s);
    }
    return samples.empty() ? 0.0 : std::sqrt(sum / static_cast<double>(samples.size()));
}

MemberArrivals arrivalsOf(const Correlator& correlator, std::size_t member)
{
    const auto envelope = correlator.envelope(memberSignal(member));
    const float background = backgroundLevel(envelope);
    const std::size_t first =
        alignComb(envelope, kRepeatFrames, kRepeats, scheduledStart(member, 0) + kLatestArrivalFrames);
    MemberArrivals arrivals;
    for (std::size_t repeat = 0; repeat < kRepeats; ++repeat) {
        const std::size_t tooth = first + repeat * kRepeatFrames;
        const std::size_t from = tooth > kSearchMarginFrames ? tooth - kSearchMarginFrames : 0;
        const auto arrival = peakWithin(envelope, from, tooth + kSearchMarginFrames + kRate / 1000, background);
        const bool found = arrival && isFound(*arrival);
        arrivals.frames.push_back(found ? arrival->frame : -1.0);
        arrivals.found += found ? 1 : 0;
    }
    return arrivals;
}

// The repeats in which both speakers were heard.
std::vector<std::size_t> completeRepeats(const MemberArrivals& primary, const MemberArrivals& secondary)
{
    std::vector<std::size_t> repeats;
    for (std::size_t repeat = 0; repeat < kRepeats; ++repeat) {
        if (primary.frames[repeat] >= 0.0 && secondary.frames[repeat] >= 0.0) {
            repeats.push_back(repeat);
        }
    }
    return repeats;
}

MeasurementOutcome notFound(std::span<const float> recording, const MemberArrivals& primary,
                            const MemberArrivals& secondary)
{
    MeasurementOutcome outcome;
    if (primary.found == 0 && secondary.found == 0) {
        outcome.status = rms(recording) < kQuietRms ? MeasurementStatus::TooQuiet : MeasurementStatus::TooNoisy;
    } else if (primary.found == 0 || secondary.found == 0) {
        outcome.status = MeasurementStatus::NoSignal;
        outcome.silentMember = primary.found == 0 ? 0 : 1;
    } else {
        // Each speaker was heard, but too seldom.
        outcome.status = MeasurementStatus::TooNoisy;
    }
    return outcome;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    const std::size_t middle = values.size() / 2;
    return values.size() % 2 == 1 ? values[middle] : 0.5 * (values[middle - 1] + values[middle]);
}

} // namespace

MeasurementOutcome analyseRecording(std::span<const float> recording)
{
    const Correlator correlator(recording, kSignalFrames);
    const auto primary = arrivalsOf(correlator, 0);
    const auto secondary = arrivalsOf(correlator, 1);
    const auto repeats = completeRepeats(primary, secondary);
    if (repeats.size() < kMinimumRepeats) {
        return notFound(recording, primary, secondary);
    }
    MeasurementOutcome outcome;
    for (const std::size_t repeat : repeats) {
        const double frames =
            secondary.frames[repeat] - primary.frames[repeat] - static_cast<double>(kMemberSpacingFrames);
        outcome.differencesMs.push_back(frames * 1000.0 / kRate);
    }
    const auto [low, high] = std::minmax_element(outcome.differencesMs.begin(), outcome.differencesMs.end());
    outcome.spreadMs = *high - *low;
    const double difference = median(outcome.differencesMs);
    outcome.latenessMs = {std::max(0.0, -difference), std::max(0.0, difference)};
    outcome.status = outcome.spreadMs > kMaxSpreadMs ? MeasurementStatus::RepeatsDisagree : MeasurementStatus::Measured;
    return outcome;
}

} // namespace orvanta::measure

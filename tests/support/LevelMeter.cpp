#include "LevelMeter.h"

#include "OffsetMeter.h"

#include <cmath>

namespace orvanta::testing {
namespace {

constexpr double kToneSeconds = 1.6;
// The level is read over this stretch, after the members have settled.
constexpr long kSettleFrames = kMeterRate * 3 / 10;
constexpr long kWindowFrames = kMeterRate / 2;
constexpr float kHeard = 0.002f;

// The RMS of a channel over the window that starts kSettleFrames after it is first heard.
std::optional<double> rms(const Samples& recording, int channel)
{
    const long frames = static_cast<long>(recording.size() / kMeterChannels);
    const auto at = [&](long frame) {
        return static_cast<double>(recording[static_cast<std::size_t>(frame * kMeterChannels + channel)]);
    };
    long first = 0;
    while (first < frames && std::abs(at(first)) <= static_cast<double>(kHeard)) {
        ++first;
    }
    const long start = first + kSettleFrames;
    if (start + kWindowFrames > frames) {
        return std::nullopt;
    }
    double sum = 0.0;
    for (long frame = start; frame < start + kWindowFrames; ++frame) {
        sum += at(frame) * at(frame);
    }
    return std::sqrt(sum / static_cast<double>(kWindowFrames));
}

} // namespace

std::optional<MemberLevels> measureMemberLevels(const SoundServer& server)
{
    Recorder recorder(server);
    Player player(server, toneTrack(kToneSeconds));
    if (!recorder.started() || !player.waitUntilDone()) {
        return std::nullopt;
    }
    // The longest member delay of the rig and some slack.
    const auto recording = recorder.stop(1200);
    const auto primary = rms(recording, kMemberA);
    const auto secondary = rms(recording, kMemberB);
    if (!primary || !secondary) {
        return std::nullopt;
    }
    return MemberLevels{*primary, *secondary};
}

} // namespace orvanta::testing

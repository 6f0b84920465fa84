#include "SyntheticRoom.h"

#include <cmath>
#include <random>

namespace orvanta::testing {
namespace {

std::size_t framesOf(double ms)
{
    return static_cast<std::size_t>(std::lround(ms * measure::kRate / 1000.0));
}

void addSpeaker(std::vector<float>& recording, const RoomSpeaker& speaker, std::size_t member, std::size_t start)
{
    const auto signal = measure::memberSignal(member);
    for (std::size_t repeat = 0; repeat < measure::kRepeats; ++repeat) {
        if (repeat < speaker.lost.size() && speaker.lost[repeat]) {
            continue;
        }
        const double jitter = repeat < speaker.jitterMs.size() ? speaker.jitterMs[repeat] : 0.0;
        const std::size_t at = start + measure::scheduledStart(member, repeat) + framesOf(speaker.latenessMs + jitter);
        for (std::size_t i = 0; i < signal.size() && at + i < recording.size(); ++i) {
            recording[at + i] += speaker.gain * signal[i];
        }
    }
}

} // namespace

std::vector<float> recordInRoom(const Room& room)
{
    std::vector<float> recording(measure::kRecordingFrames, 0.0f);
    std::mt19937 random(room.seed);
    std::normal_distribution<float> noise(0.0f, room.noiseRms);
    for (auto& sample : recording) {
        sample = room.noiseRms > 0.0f ? noise(random) : 0.0f;
    }
    const std::size_t start = framesOf(room.microphoneLatencyMs);
    for (std::size_t member = 0; member < 2; ++member) {
        addSpeaker(recording, room.speakers[member], member, start);
    }
    return recording;
}

} // namespace orvanta::testing

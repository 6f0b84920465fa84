// From a recording made in memory as a microphone in a room would to the speakers' relative lateness.

#include "measure/MeasurementAnalysis.h"
#include "measure/ArrivalFinder.h"
#include "measure/MeasurementPlan.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <random>
#include <tuple>

namespace orvanta::measure {
namespace {

constexpr double kAccuracyMs = 0.1;

struct RoomSpeaker
{
    double latenessMs = 0.0;
    float gain = 1.0f;
    std::vector<double> jitterMs{}; // added to the lateness of each repeat in turn
    std::vector<bool> lost{};       // repeats in which this speaker is not heard
};

struct Room
{
    std::array<RoomSpeaker, 2> speakers{};
    double microphoneLatencyMs = 37.0; // the recording starts this long before the script does
    float noiseRms = 0.01f;
};

std::size_t framesOf(double ms)
{
    return static_cast<std::size_t>(std::lround(ms * kRate / 1000.0));
}

std::vector<float> recordInRoom(const Room& room)
{
    std::vector<float> recording(kRecordingFrames, 0.0f);
    std::mt19937 random(1);
    std::normal_distribution<float> noise(0.0f, room.noiseRms);
    for (auto& sample : recording) {
        sample = room.noiseRms > 0.0f ? noise(random) : 0.0f;
    }
    for (std::size_t member = 0; member < 2; ++member) {
        const auto& speaker = room.speakers[member];
        const auto signal = memberSignal(member);
        for (std::size_t repeat = 0; repeat < kRepeats; ++repeat) {
            const double jitter = repeat < speaker.jitterMs.size() ? speaker.jitterMs[repeat] : 0.0;
            const std::size_t at = framesOf(room.microphoneLatencyMs) + scheduledStart(member, repeat) +
                                   framesOf(speaker.latenessMs + jitter);
            const bool heard = repeat >= speaker.lost.size() || !speaker.lost[repeat];
            for (std::size_t i = 0; heard && i < signal.size() && at + i < recording.size(); ++i) {
                recording[at + i] += speaker.gain * signal[i];
            }
        }
    }
    return recording;
}

Room roomWith(double primaryMs, double secondaryMs)
{
    Room room;
    room.speakers[0].latenessMs = primaryMs;
    room.speakers[1].latenessMs = secondaryMs;
    return room;
}
TEST(MeasurementAnalysis, EitherSpeakerMayBeLaterEvenBeyondTheLongestDelayWhateverItsPolarityAndTheMicrophoneDropsOut)
{
    // A speaker wired the other way round plays its sweep upside down.
    for (const auto& [primary, secondary, microphone, polarity] :
         {std::tuple{20.0, 190.0, 5.0, 1.0f}, std::tuple{20.0, 190.0, 120.0, -1.0f},
          std::tuple{245.0, 12.0, 37.0, 1.0f}, std::tuple{0.0, 650.0, 37.0, -0.5f}}) {
        Room room = roomWith(primary, secondary);
        room.microphoneLatencyMs = microphone;
        room.speakers[1].gain = polarity;
        const auto outcome = analyseRecording(recordInRoom(room));
        ASSERT_EQ(outcome.status, MeasurementStatus::Measured) << primary << " " << secondary << " " << microphone;
        EXPECT_NEAR(outcome.latenessMs[0], std::max(0.0, primary - secondary), kAccuracyMs);
        EXPECT_NEAR(outcome.latenessMs[1], std::max(0.0, secondary - primary), kAccuracyMs);
        EXPECT_LT(outcome.spreadMs, kAccuracyMs);
    }
}

TEST(MeasurementAnalysis, OneLostRepeatIsLeftOutButTwoAreTooManyAndRepeatsMayDisagreeByFiveMilliseconds)
{
    Room room = roomWith(20.0, 190.0);
    room.speakers[1].lost = {true, false, false, false};
    const auto outcome = analyseRecording(recordInRoom(room));
    ASSERT_EQ(outcome.status, MeasurementStatus::Measured);
    EXPECT_EQ(outcome.differencesMs.size(), kRepeats - 1);
    EXPECT_NEAR(outcome.latenessMs[1], 170.0, kAccuracyMs);
    room.speakers[0].lost = {false, false, true, false};
    EXPECT_EQ(analyseRecording(recordInRoom(room)).status, MeasurementStatus::TooNoisy);

    room = roomWith(20.0, 190.0);
    room.speakers[1].jitterMs = {0.0, 3.0, 6.0, 1.0};
    const auto disagreeing = analyseRecording(recordInRoom(room));
    EXPECT_EQ(disagreeing.status, MeasurementStatus::RepeatsDisagree);
    EXPECT_NEAR(disagreeing.spreadMs, 6.0, kAccuracyMs);
    room.speakers[1].jitterMs = {0.0, 2.0, 4.0, 1.0};
    EXPECT_EQ(analyseRecording(recordInRoom(room)).status, MeasurementStatus::Measured);
}

TEST(MeasurementAnalysis, ASilentSpeakerIsNamedNearSilenceIsTooQuietAndSweepsDrownedInNoiseAreTooNoisy)
{
    for (const std::size_t silent : {0u, 1u}) {
        Room room = roomWith(20.0, 190.0);
        room.speakers[silent].gain = 0.0f;
        const auto outcome = analyseRecording(recordInRoom(room));
        EXPECT_EQ(outcome.status, MeasurementStatus::NoSignal) << silent;
        EXPECT_EQ(outcome.silentMember, silent);
    }
    Room room = roomWith(20.0, 190.0);
    room.speakers[0].gain = room.speakers[1].gain = 0.0f;
    for (const float noise : {0.0005f, 0.0f}) { // a muted microphone records exact zeros
        room.noiseRms = noise;
        EXPECT_EQ(analyseRecording(recordInRoom(room)).status, MeasurementStatus::TooQuiet) << noise;
    }
    room.speakers[0].gain = room.speakers[1].gain = 0.002f;
    room.noiseRms = 0.3f;
    EXPECT_EQ(analyseRecording(recordInRoom(room)).status, MeasurementStatus::TooNoisy);
}

TEST(ArrivalFinder, TheCombLinesUpWithArrivalsAPeriodApartPastALoneLoudPeakAndDoesNotSlidePastALostFirstOne)
{
    std::vector<float> envelope(10 * kRate, 1.0f);
    envelope[5000] = 80.0f;
    for (const std::size_t period : {1u, 2u, 3u}) { // the first arrival, at 31000, is lost
        envelope[31000 + period * 2 * kRate] = 50.0f;
    }
    EXPECT_NEAR(static_cast<double>(alignComb(envelope, 2 * kRate, 4, envelope.size())), 31000.0, 2.0 * kRate / 1000);
}

} // namespace
} // namespace orvanta::measure

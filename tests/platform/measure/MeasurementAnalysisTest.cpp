// From a recording of a whole measurement to the speakers' relative lateness, on rooms worked
// out in memory: the microphone's own latency drops out, either speaker may be the later one,
// and a recording that cannot be trusted is turned down with the reason.

#include "measure/MeasurementAnalysis.h"
#include "SyntheticRoom.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <tuple>

namespace orvanta::measure {
namespace {

using testing::recordInRoom;
using testing::Room;

constexpr double kAccuracyMs = 0.1;

Room roomWith(double primaryMs, double secondaryMs)
{
    Room room;
    room.speakers[0].latenessMs = primaryMs;
    room.speakers[1].latenessMs = secondaryMs;
    return room;
}

TEST(MeasurementAnalysis, EitherSpeakerMayBeLaterEvenBeyondTheLongestDelayAndTheMicrophoneLatencyDropsOut)
{
    for (const auto& [primary, secondary, microphone] : {std::tuple{20.0, 190.0, 5.0}, std::tuple{20.0, 190.0, 120.0},
                                                         std::tuple{245.0, 12.0, 37.0}, std::tuple{0.0, 650.0, 37.0}}) {
        Room room = roomWith(primary, secondary);
        room.microphoneLatencyMs = microphone;
        const auto outcome = analyseRecording(recordInRoom(room));
        ASSERT_EQ(outcome.status, MeasurementStatus::Measured) << primary << " " << secondary << " " << microphone;
        EXPECT_NEAR(outcome.latenessMs[0], std::max(0.0, primary - secondary), kAccuracyMs);
        EXPECT_NEAR(outcome.latenessMs[1], std::max(0.0, secondary - primary), kAccuracyMs);
        EXPECT_LT(outcome.spreadMs, kAccuracyMs);
        EXPECT_EQ(outcome.differencesMs.size(), kRepeats);
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
    for (const float noise : {0.0005f, 0.0f}) {
        room.noiseRms = noise;
        EXPECT_EQ(analyseRecording(recordInRoom(room)).status, MeasurementStatus::TooQuiet) << noise;
    }
    room.speakers[0].gain = room.speakers[1].gain = 0.002f;
    room.noiseRms = 0.3f;
    EXPECT_EQ(analyseRecording(recordInRoom(room)).status, MeasurementStatus::TooNoisy);
}

} // namespace
} // namespace orvanta::measure

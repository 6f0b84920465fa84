// What the user hears from the loopback design on PulseAudio: the members offset by their delays,
// and no member silent while a delay changes live.

#include "support/OffsetMeter.h"
#include "support/ServerFixture.h"

#include <cmath>

namespace orvanta::testing {
namespace {

class LoopbackLiveChange : public ::testing::Test, public ServerFixture
{
protected:
    void SetUp() override
    {
        startServer(SoundServer::Kind::PulseAudio, 3, [this] { ASSERT_TRUE(loadMeterRig(*server)); });
    }
};

class LoopbackOffset : public LoopbackLiveChange, public ::testing::WithParamInterface<std::pair<int, int>>
{};

TEST_P(LoopbackOffset, MembersAreOffsetByTheirDeclaredDelaysInTheRightDirection)
{
    const auto [primaryMs, secondaryMs] = GetParam();
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", primaryMs, secondaryMs), hal::noErr);
    // PulseAudio's loopback reaches its latency by adapting its rate, and on a loaded machine its first
    // seconds can be a millisecond or two off: up to three readings. A wrong delay is wrong in all.
    std::optional<double> offset;
    for (int reading = 0; reading < 3 && !(offset && std::abs(*offset - (secondaryMs - primaryMs)) <= 1.0); ++reading) {
        offset = measureOffsetMs(*server);
    }
    ASSERT_TRUE(offset.has_value()) << "no click recorded";
    RecordProperty("measured_ms", std::to_string(*offset));
    // The member that declares less waits for the other: mA plays (secondary - primary) ms after mB.
    EXPECT_NEAR(*offset, secondaryMs - primaryMs, 1.0);
}

TEST_F(LoopbackLiveChange, LeavesNoGap)
{
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 0), hal::noErr);
    const auto silence = longestSilenceMs(*server, [this] { audio->setRuntimeLatency("mB", 600); });
    ASSERT_TRUE(silence.has_value());
    RecordProperty("longest_silence_ms", std::to_string(*silence));
    // A change that unloaded the old loopback first would leave a gap as long as the new latency.
    EXPECT_LT(*silence, 10.0);
}

INSTANTIATE_TEST_SUITE_P(Delays, LoopbackOffset,
                         ::testing::Values(std::pair{0, 0}, std::pair{0, 150}, std::pair{0, 600}, std::pair{150, 0},
                                           std::pair{600, 0}),
                         [](const auto& row) {
                             return std::to_string(row.param.first) + "_" + std::to_string(row.param.second);
                         });

} // namespace
} // namespace orvanta::testing

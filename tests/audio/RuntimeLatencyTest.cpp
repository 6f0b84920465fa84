#include "support/SimAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RuntimeLatency : public ::testing::Test
{
protected:
    SimAudio sim{{outputDevice("Speakers", "spk"), outputDevice("BT", "bt", hal::kAudioDeviceTransportTypeBluetooth)}};

    void startSync(int primaryMs = 0, int secondaryMs = 0)
    {
        ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", primaryMs, secondaryMs), hal::noErr);
        sim.reset();
    }
};

TEST_F(RuntimeLatency, WritesTheWholeDelayToTheMembersSubDevice)
{
    startSync(0, 40);
    sim.audio.setRuntimeLatency("bt", 150);
    sim.audio.setRuntimeLatency("bt", 0);
    EXPECT_THAT(sim.printed.lines, ElementsAre("⏱️ Real-time latency set on bt: 150ms (7200.0 frames)",
                                               "⏱️ Real-time latency set on bt: 0ms (0.0 frames)"));
    const auto subID = sim.system.deviceWithUID(audio::stackedDeviceUID)->subDevices[1];
    const auto sub = std::to_string(subID);
    EXPECT_THAT(sim.calls({"set"}), ElementsAre("set " + sub + " 'xltc' glob 0 [8] 7200.0 -> 0",
                                                "set " + sub + " 'xltc' glob 0 [8] 0.0 -> 0"));
    EXPECT_EQ(sim.system.subDevice(subID)->uid, "bt");
}

TEST_F(RuntimeLatency, NothingIsWrittenOrPrintedWithoutAStackedDeviceForANonMemberOrAnUnreadableList)
{
    sim.audio.setRuntimeLatency("bt", 150);
    sim.system.addDevice(outputDevice("Other", "other"));
    startSync();
    sim.audio.setRuntimeLatency("other", 150);
    sim.system.addFailure(
        std::nullopt,
        {sim::CallKind::GetPropertyDataSize, hal::kAudioAggregateDevicePropertyActiveSubDeviceList, {}, {}, -1});
    sim.audio.setRuntimeLatency("bt", 150);
    EXPECT_THAT(sim.printed.lines, IsEmpty());
    EXPECT_THAT(sim.calls({"set"}), IsEmpty());
}

} // namespace
} // namespace orvanta::testing

#include "support/SimAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <tuple>

namespace orvanta::testing {
namespace {

using hal::PropertyList;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

const std::string kCleanup = "🗑️ Startup Cleanup: Old device destroyed.";

sim::DeviceSpec withID(sim::DeviceSpec device, hal::AudioObjectID id)
{
    device.id = id;
    return device;
}

// Speakers at 48 kHz (ID 91) and a Bluetooth speaker at 44.1 kHz (ID 92); the next object is 93.
SimAudio speakersAndBluetooth()
{
    return SimAudio({withID(outputDevice("Speakers", "spk"), 91),
                     withID(outputDevice("BT", "bt", hal::kAudioDeviceTransportTypeBluetooth, 44100), 92)});
}

std::size_t stackedCount(const SimAudio& sim)
{
    return static_cast<std::size_t>(std::count_if(sim.system.devices().begin(), sim.system.devices().end(),
                                                  [](const auto& d) { return d.spec.uid == audio::stackedDeviceUID; }));
}

// The composition's keys, their order and types; drift follows the position, not the transport.
TEST(StackedDevice, CompositionHasExactlyTheSpecifiedKeysOrderAndTypes)
{
    auto sim = speakersAndBluetooth();
    const auto composition = [&sim] {
        return sim.system.deviceWithUID(audio::stackedDeviceUID)->composition.describe();
    };
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    EXPECT_EQ(composition(),
              R"({"name"="Orvanta", "uid"="com.quellon.stacked", "stacked"=1, "subdevices"=()"
              R"({"uid"="spk", "drift"=0, "latency-out"=0u}, {"uid"="bt", "drift"=1, "latency-out"=6615u})})");
    ASSERT_EQ(sim.audio.createStackedDevice("bt", "spk", 0, 0), hal::noErr);
    EXPECT_THAT(composition(), ::testing::HasSubstr(R"(=({"uid"="bt", "drift"=0, )"));
}

TEST(StackedDevice, RecreatingLeavesOneDeviceAsTheDefault)
{
    auto sim = speakersAndBluetooth();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    sim.reset();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 120), hal::noErr);
    EXPECT_EQ(std::pair(stackedCount(sim), sim.system.defaultOutputDevice()), std::pair(std::size_t{1}, 96u));
    EXPECT_THAT(sim.printed.lines, ElementsAre(kCleanup, "✅ Sync Device Created! ID: 96, latency1=0ms latency2=120ms"));
    EXPECT_THAT(sim.calls({"destroy"}), ElementsAre("destroy 93 -> 0"));
}

TEST(StackedDevice, DestroysEveryLeftoverWithOneLineEachEvenWhenDestroyFails)
{
    auto sim = speakersAndBluetooth();
    hal::AudioObjectID id = 0;
    const auto leftover = PropertyList::dictionary({{"uid", PropertyList::string(audio::stackedDeviceUID)}});
    sim.system.createAggregateDevice(leftover, id);
    sim.system.createAggregateDevice(leftover, id);
    sim.reset();
    sim.audio.destroyOldStackedDevices();
    EXPECT_EQ(stackedCount(sim), 0u);
    EXPECT_THAT(sim.printed.lines, ElementsAre(kCleanup, kCleanup));
    EXPECT_THAT(sim.calls({"destroy"}), ElementsAre("destroy 93 -> 0", "destroy 94 -> 0"));

    sim.system.createAggregateDevice(leftover, id);
    sim.system.addFailure(std::nullopt, {sim::CallKind::DestroyAggregateDevice, {}, {}, {}, -1});
    sim.reset();
    sim.audio.destroyOldStackedDevices();
    sim.audio.returnAudio("gone"); // a vanished device: nothing
    EXPECT_THAT(sim.printed.lines, ElementsAre(kCleanup));
    EXPECT_EQ(stackedCount(sim), 1u);
}

// The whole delay goes to the member's sub-device; a non-member or a refused write prints no success line.
TEST(RuntimeLatency, WritesTheWholeDelayToTheMembersSubDeviceOnlyAndReportsARefusal)
{
    auto sim = speakersAndBluetooth();
    sim.audio.setRuntimeLatency("bt", 150); // no stacked device: nothing
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 40), hal::noErr);
    sim.reset();
    sim.audio.setRuntimeLatency("bt", 150);
    sim.system.addDevice(outputDevice("Other", "other"));
    sim.audio.setRuntimeLatency("other", 150);
    const auto subID = sim.system.deviceWithUID(audio::stackedDeviceUID)->subDevices[1];
    EXPECT_EQ(sim.system.subDevice(subID)->uid, "bt");
    EXPECT_THAT(sim.calls({"set"}), ElementsAre("set " + std::to_string(subID) + " 'xltc' glob 0 [8] 6615.0 -> 0"));
    sim.system.addFailure(std::nullopt, {sim::CallKind::SetPropertyData, {}, {}, {}, -7});
    sim.audio.setRuntimeLatency("bt", 0);
    EXPECT_THAT(sim.printed.lines,
                ElementsAre("⏱️ Real-time latency set on bt: 150ms (6615.0 frames)",
                            "ℹ️ Runtime latency set failed (-7); will apply on next sync toggle."));
}

TEST(DelayToFrames, RoundsHalfAwayFromZeroAtTheMembersRateAndSaturates)
{
    for (const auto& [rate, ms, frames] :
         {std::tuple{48000.0, 150, 7200u}, std::tuple{44100.0, 150, 6615u}, std::tuple{44100.0, 5, 221u},
          std::tuple{96000.0, 600, 57600u}, std::tuple{48000.0, -5, 0u}, std::tuple{768000.0, 5592, 4294656u},
          std::tuple{768000.0, INT_MAX, UINT32_MAX}, std::tuple{1e300, 1, UINT32_MAX}}) {
        SimAudio sim({outputDevice("Device", "dev", hal::kAudioDeviceTransportTypeUSB, rate)});
        EXPECT_EQ(sim.audio.delayToFrames("dev", ms), frames) << rate << " Hz, " << ms << " ms";
    }
    SimAudio sim({outputDevice("Device", "dev", hal::kAudioDeviceTransportTypeUSB, 44100)});
    EXPECT_EQ(sim.audio.delayToFrames("dev", INT_MIN), 0u);
    EXPECT_THAT(sim.calls(), IsEmpty()); // a delay of zero or less reads no rate
}

} // namespace
} // namespace orvanta::testing

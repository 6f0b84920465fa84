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

const PropertyList& member(const SimAudio& sim, std::size_t index)
{
    return (*sim.system.deviceWithUID(audio::stackedDeviceUID)->composition.find("subdevices")->asArray())[index];
}

TEST(StackedDevice, CompositionHasExactlyTheSpecifiedKeysOrderAndTypes)
{
    auto sim = speakersAndBluetooth();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    const auto memberOf = [](const char* uid, int drift, hal::UInt32 frames) {
        return PropertyList::dictionary({{"uid", PropertyList::string(uid)},
                                         {"drift", PropertyList::integer(drift)},
                                         {"latency-out", PropertyList::uint32(frames)}});
    };
    const auto expected = PropertyList::dictionary({
        {"name", PropertyList::string("Orvanta")},
        {"uid", PropertyList::string("com.quellon.stacked")},
        {"stacked", PropertyList::integer(1)},
        {"subdevices", PropertyList::array({memberOf("spk", 0, 0), memberOf("bt", 1, 6615)})},
    });
    const auto& composition = sim.system.deviceWithUID(audio::stackedDeviceUID)->composition;
    EXPECT_EQ(composition, expected) << composition.describe();

    ASSERT_EQ(sim.audio.createStackedDevice("bt", "spk", 0, 0), hal::noErr);
    EXPECT_EQ(member(sim, 0), memberOf("bt", 0, 0)); // drift follows the position, not the transport
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

TEST(StackedDevice, AnAbsentMemberOrAnUnreadableRateConvertsTheDelayAt48k)
{
    auto bt = withID(outputDevice("BT", "bt", hal::kAudioDeviceTransportTypeBluetooth, 44100), 92);
    bt.failures.push_back({sim::CallKind::GetPropertyData, hal::kAudioDevicePropertyNominalSampleRate, {}, {}, -1});
    SimAudio sim({withID(outputDevice("Speakers", "spk"), 91), bt});
    for (const char* absent : {"gone", "bt"}) {
        ASSERT_EQ(sim.audio.createStackedDevice("spk", absent, 0, 5), hal::noErr);
        EXPECT_EQ(*member(sim, 1).find("uid")->asString(), absent);
        EXPECT_EQ(member(sim, 1).find("latency-out")->asInteger()->value, 240);
    }
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

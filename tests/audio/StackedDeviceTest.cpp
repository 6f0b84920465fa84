#include "support/SimAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>

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
    std::size_t count = 0;
    for (const auto& device : sim.system.devices()) {
        count += device.spec.uid == audio::stackedDeviceUID ? 1u : 0u;
    }
    return count;
}

const PropertyList& composition(const SimAudio& sim)
{
    return sim.system.deviceWithUID(audio::stackedDeviceUID)->composition;
}

TEST(StackedDevice, CompositionHasExactlyTheSpecifiedKeysOrderAndTypes)
{
    auto sim = speakersAndBluetooth();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 150), hal::noErr);

    const auto expected = PropertyList::dictionary({
        {"name", PropertyList::string("Orvanta")},
        {"uid", PropertyList::string("com.quellon.stacked")},
        {"stacked", PropertyList::integer(1)},
        {"subdevices", PropertyList::array({
                           PropertyList::dictionary({{"uid", PropertyList::string("spk")},
                                                     {"drift", PropertyList::integer(0)},
                                                     {"latency-out", PropertyList::uint32(0)}}),
                           PropertyList::dictionary({{"uid", PropertyList::string("bt")},
                                                     {"drift", PropertyList::integer(1)},
                                                     {"latency-out", PropertyList::uint32(6615)}}),
                       })},
    });
    EXPECT_EQ(composition(sim), expected) << composition(sim).describe();

    // Drift follows the position, not the transport.
    ASSERT_EQ(sim.audio.createStackedDevice("bt", "spk", 0, 0), hal::noErr);
    const auto& members = *composition(sim).find("subdevices")->asArray();
    EXPECT_EQ(*members[0].find("uid")->asString(), "bt");
    EXPECT_EQ(members[0].find("drift")->asInteger()->value, 0);
    EXPECT_EQ(members[1].find("drift")->asInteger()->value, 1);
}

TEST(StackedDevice, CreationRunsInOrderAndBecomesTheDefaultOutput)
{
    auto sim = speakersAndBluetooth();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 150), hal::noErr);

    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Sync Device Created! ID: 93, latency1=0ms latency2=150ms"));
    EXPECT_THAT(sim.calls({"create", "set", "destroy"}),
                ElementsAre(::testing::StartsWith("create {\"name\"=\"Orvanta\""), "set 1 'dOut' glob 0 [4] 93 -> 0"));
    EXPECT_EQ(sim.system.defaultOutputDevice(), 93u);
    // Only the secondary's rate is read: a 0 ms delay needs no rate.
    EXPECT_THAT(sim.calls({"get"}), ::testing::Contains("get 92 'nsrt' glob 0 [8] -> 0"));
    EXPECT_THAT(sim.calls({"get"}), ::testing::Not(::testing::Contains("get 91 'nsrt' glob 0 [8] -> 0")));
}

TEST(StackedDevice, CreatingTwiceLeavesOneDeviceAndPrintsOneCleanupLine)
{
    auto sim = speakersAndBluetooth();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    sim.reset();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 120), hal::noErr);

    EXPECT_EQ(stackedCount(sim), 1u);
    ASSERT_EQ(sim.printed.lines.size(), 2u);
    EXPECT_EQ(sim.printed.lines[0], kCleanup);
    EXPECT_THAT(sim.calls({"destroy"}), ElementsAre("destroy 93 -> 0"));
}

TEST(StackedDevice, DestroysEveryLeftoverWithOneLineEach)
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
}

TEST(StackedDevice, CleanupLineIsPrintedEvenWhenDestroyFails)
{
    auto sim = speakersAndBluetooth();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 0), hal::noErr);
    sim.system.addFailure(std::nullopt, {sim::CallKind::DestroyAggregateDevice, {}, {}, {}, -1});
    sim.reset();
    sim.audio.destroyOldStackedDevices();
    EXPECT_THAT(sim.printed.lines, ElementsAre(kCleanup));
    EXPECT_EQ(stackedCount(sim), 1u);
}

TEST(StackedDevice, CreationFailureReturnsTheStatusAndLeavesTheDefaultAlone)
{
    auto sim = speakersAndBluetooth();
    ASSERT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 0), hal::noErr);
    sim.system.addFailure(std::nullopt, {sim::CallKind::CreateAggregateDevice, {}, {}, {}, 1852797029});
    sim.reset();

    EXPECT_EQ(sim.audio.createStackedDevice("spk", "bt", 10, 20), 1852797029);
    EXPECT_THAT(sim.printed.lines, ElementsAre(kCleanup, "❌ Create Error: 1852797029"));
    EXPECT_THAT(sim.calls({"set"}), IsEmpty());
    EXPECT_EQ(stackedCount(sim), 0u);
}

TEST(StackedDevice, NegativeStatusesPrintSigned)
{
    auto sim = speakersAndBluetooth();
    sim.system.addFailure(std::nullopt, {sim::CallKind::CreateAggregateDevice, {}, {}, {}, -10851});
    EXPECT_EQ(sim.audio.createStackedDevice("spk", "bt", 0, 0), -10851);
    EXPECT_THAT(sim.printed.lines, ElementsAre("❌ Create Error: -10851"));
}

TEST(StackedDevice, AnAbsentMemberOrAnUnreadableRateConvertsTheDelayAt48k)
{
    auto bt = withID(outputDevice("BT", "bt", hal::kAudioDeviceTransportTypeBluetooth, 44100), 92);
    bt.failures.push_back({sim::CallKind::GetPropertyData, hal::kAudioDevicePropertyNominalSampleRate, {}, {}, -1});
    SimAudio sim({withID(outputDevice("Speakers", "spk"), 91), bt});
    for (const auto& [member, frames] : {std::pair{"gone", 240}, std::pair{"bt", 240}}) {
        ASSERT_EQ(sim.audio.createStackedDevice("spk", member, 0, 5), hal::noErr);
        const auto& members = *composition(sim).find("subdevices")->asArray();
        EXPECT_EQ(*members[1].find("uid")->asString(), member);
        EXPECT_EQ(members[1].find("latency-out")->asInteger()->value, frames);
    }
}

TEST(StackedDevice, TurningOffRestoresThePrimaryAsDefaultWithOrWithoutAStackedDevice)
{
    auto sim = speakersAndBluetooth();
    sim.audio.destroyOldStackedDevices();
    sim.audio.returnAudio("spk");
    sim.audio.returnAudio("gone"); // a vanished device: nothing
    EXPECT_THAT(sim.printed.lines, ElementsAre("Returning audio to: spk"));
    EXPECT_THAT(sim.calls({"set", "destroy"}), ElementsAre("set 1 'dOut' glob 0 [4] 91 -> 0"));

    ASSERT_EQ(sim.audio.createStackedDevice("bt", "spk", 0, 0), hal::noErr);
    sim.reset();
    sim.audio.destroyOldStackedDevices();
    sim.audio.returnAudio("bt");
    EXPECT_THAT(sim.printed.lines, ElementsAre(kCleanup, "Returning audio to: bt"));
    EXPECT_EQ(sim.system.defaultOutputDevice(), 92u);
}

struct FramesCase
{
    double rate;
    int ms;
    hal::UInt32 frames;
};

class DelayToFrames : public ::testing::TestWithParam<FramesCase>
{};

TEST_P(DelayToFrames, RoundsHalfAwayFromZeroAtTheMembersRate)
{
    const auto [rate, ms, frames] = GetParam();
    SimAudio sim({outputDevice("Device", "dev", hal::kAudioDeviceTransportTypeUSB, rate)});
    EXPECT_EQ(sim.audio.delayToFrames("dev", ms), frames);
}

INSTANTIATE_TEST_SUITE_P(Examples, DelayToFrames,
                         ::testing::Values(FramesCase{48000, 150, 7200}, FramesCase{44100, 150, 6615},
                                           FramesCase{44100, 5, 221}, FramesCase{44100, 0, 0}, FramesCase{48000, 1, 48},
                                           FramesCase{44100, 1, 44}, FramesCase{22050, 1, 22},
                                           FramesCase{48000, 600, 28800}, FramesCase{96000, 600, 57600},
                                           FramesCase{48000, -5, 0}));

TEST(DelayToFramesLimits, CountsBeyond32BitsSaturateAndNoDelayReadsNoRate)
{
    SimAudio sim({outputDevice("Device", "dev", hal::kAudioDeviceTransportTypeUSB, 768000),
                  outputDevice("Absurd", "absurd", hal::kAudioDeviceTransportTypeUSB, 1e300)});
    EXPECT_EQ(sim.audio.delayToFrames("dev", INT_MAX), UINT32_MAX);
    EXPECT_EQ(sim.audio.delayToFrames("absurd", 1), UINT32_MAX);
    EXPECT_EQ(sim.audio.delayToFrames("dev", 5592), 4294656u); // still exact below the limit
    // A delay of zero or less reads no rate.
    sim.reset();
    EXPECT_EQ(sim.audio.delayToFrames("dev", 0), 0u);
    EXPECT_EQ(sim.audio.delayToFrames("dev", INT_MIN), 0u);
    EXPECT_THAT(sim.calls(), IsEmpty());
}

} // namespace
} // namespace orvanta::testing

#include "support/SimAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

sim::DeviceSpec virtualMain(const std::string& uid, bool writable = true)
{
    auto device = outputDevice("Virtual " + uid, uid);
    device.virtualMainVolume = volumeControl(writable);
    return device;
}

sim::DeviceSpec perChannel(const std::string& uid, bool first = true, bool second = true)
{
    auto device = outputDevice("Channels " + uid, uid, hal::kAudioDeviceTransportTypeBluetooth);
    device.channelVolumes = {volumeControl(first), volumeControl(second)};
    return device;
}

sim::DeviceSpec mainElement(const std::string& uid)
{
    auto device = outputDevice("Main " + uid, uid, hal::kAudioDeviceTransportTypeUSB);
    device.mainVolume = volumeControl();
    return device;
}

std::vector<std::string> softwareLines(const std::string& uid, const std::string& level)
{
    return {"⚠️ Device " + uid + " does not support hardware volume. Using software volume: " + level,
            "📊 Software volume stored for " + uid + ": " + level,
            "💡 Note: Device may not support volume control. Consider using SoundSource or similar apps."};
}

TEST(Volume, VirtualMainVolumeGetsOneWriteAndOneLineOfTheClampedLevel)
{
    SimAudio sim({virtualMain("vm")});
    sim.audio.setVolume("vm", 0.5f);
    const auto id = std::to_string(sim.idOf("vm"));
    EXPECT_THAT(sim.calls({"set"}), ElementsAre("set " + id + " 'vmvc' outp 0 [4] 0.5 -> 0"));
    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Volume set via VirtualMainVolume for vm: 0.5"));
    EXPECT_EQ(sim.system.device(sim.idOf("vm"))->spec.virtualMainVolume.level, 0.5f);
    EXPECT_TRUE(sim.audio.deviceSupportsHardwareVolume().at("vm"));

    // Levels are clamped before anything sees them.
    sim.reset();
    sim.audio.setVolume("vm", 1.7f);
    sim.audio.setVolume("vm", -0.2f);
    sim.audio.setVolume("vm", std::numeric_limits<float>::quiet_NaN());
    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Volume set via VirtualMainVolume for vm: 1.0",
                                               "✅ Volume set via VirtualMainVolume for vm: 0.0",
                                               "✅ Volume set via VirtualMainVolume for vm: 1.0"));
}

TEST(Volume, PerChannelControlsGetTwoWritesAndOneLineEvenIfOneFails)
{
    SimAudio sim({perChannel("bt", true, false)});
    sim.audio.setVolume("bt", 0.25f);
    const auto id = std::to_string(sim.idOf("bt"));
    EXPECT_THAT(sim.calls({"set", "has"}),
                ElementsAre("has " + id + " 'vmvc' outp 0 -> false", "has " + id + " 'volm' outp 1 -> true",
                            "set " + id + " 'volm' outp 1 [4] 0.25 -> 0",
                            "set " + id + " 'volm' outp 2 [4] 0.25 -> " +
                                std::to_string(hal::kAudioHardwareIllegalOperationError)));
    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Volume set via VolumeScalar for bt: 0.25"));
}

TEST(Volume, ChannelTwoIsWrittenWithoutAskingWhetherItExists)
{
    auto mono = outputDevice("Mono", "mono");
    mono.channelVolumes = {volumeControl()};
    SimAudio sim({mono});
    sim.audio.setVolume("mono", 0.75f);
    const auto id = std::to_string(sim.idOf("mono"));
    EXPECT_THAT(sim.calls({"set"}), ElementsAre("set " + id + " 'volm' outp 1 [4] 0.75 -> 0",
                                                "set " + id + " 'volm' outp 2 [4] 0.75 -> " +
                                                    std::to_string(hal::kAudioHardwareUnknownPropertyError)));
    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Volume set via VolumeScalar for mono: 0.75"));
}

TEST(Volume, RefusingEveryControlFallsBackToSoftwareVolume)
{
    auto stubborn = virtualMain("stubborn", false);
    stubborn.channelVolumes = {volumeControl(false), volumeControl(false)};
    stubborn.mainVolume = volumeControl(false);
    SimAudio sim({stubborn});
    sim.audio.setVolume("stubborn", 0.3f);
    EXPECT_EQ(sim.printed.lines, softwareLines("stubborn", "0.3"));
    EXPECT_THAT(sim.calls({"set"}).size(), 4u);
    EXPECT_FALSE(sim.audio.deviceSupportsHardwareVolume().at("stubborn"));
}

TEST(Volume, NoControlRecordsASoftwareVolumeAndChangesNothingAudible)
{
    SimAudio sim({outputDevice("HDMI", "hdmi", hal::kAudioDeviceTransportTypeHDMI)});
    sim.audio.setVolume("hdmi", 0.8f);
    EXPECT_EQ(sim.printed.lines, softwareLines("hdmi", "0.8"));
    EXPECT_EQ(sim.audio.softwareVolumes().at("hdmi"), 0.8f);
    EXPECT_FALSE(sim.audio.deviceSupportsHardwareVolume().at("hdmi"));
    EXPECT_THAT(sim.calls({"set"}), IsEmpty());
}

TEST(Volume, SetsEveryDeviceThatSharesTheUID)
{
    SimAudio sim({virtualMain("twin"), mainElement("twin")});
    sim.audio.setVolume("twin", 0.5f);
    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Volume set via VirtualMainVolume for twin: 0.5",
                                               "✅ Volume set via Master Volume for twin: 0.5"));
}

TEST(Volume, UnknownUIDDoesNothing)
{
    SimAudio sim({virtualMain("vm")});
    sim.audio.setVolume("nobody", 0.5f);
    EXPECT_THAT(sim.printed.lines, IsEmpty());
    EXPECT_THAT(sim.calls({"set", "has"}), IsEmpty());
    EXPECT_TRUE(sim.audio.softwareVolumes().empty());
    EXPECT_TRUE(sim.audio.deviceSupportsHardwareVolume().empty());
}

TEST(HardwareVolumeMemo, TheProbesGuessHoldsUntilTheFirstSetThenTheSetsOutcomeIsRemembered)
{
    // A per-channel device is unsupported until a volume is set; a refusing virtual main
    // volume is supported until then.
    SimAudio sim({perChannel("bt"), virtualMain("stubborn", false)});
    EXPECT_FALSE(sim.audio.supportsHardwareVolume("bt"));
    EXPECT_TRUE(sim.audio.supportsHardwareVolume("stubborn"));
    sim.audio.setVolume("bt", 0.5f);
    sim.audio.setVolume("stubborn", 0.5f);
    sim.reset();
    EXPECT_TRUE(sim.audio.supportsHardwareVolume("bt"));
    EXPECT_FALSE(sim.audio.supportsHardwareVolume("stubborn"));
    EXPECT_THAT(sim.calls(), IsEmpty()); // answered from memory
}

TEST(HardwareVolumeMemo, UnknownUIDIsFalseAndProbedAgainNextTime)
{
    SimAudio sim({virtualMain("vm")});
    EXPECT_FALSE(sim.audio.supportsHardwareVolume("later"));
    EXPECT_TRUE(sim.audio.deviceSupportsHardwareVolume().empty());
    sim.system.addDevice(virtualMain("later"));
    EXPECT_TRUE(sim.audio.supportsHardwareVolume("later"));
}

} // namespace
} // namespace orvanta::testing

#include "support/SimAudio.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

sim::DeviceSpec perChannel(const std::string& uid, std::vector<bool> writable = {true, true})
{
    auto device = outputDevice("Channels " + uid, uid, hal::kAudioDeviceTransportTypeBluetooth);
    for (const bool w : writable) {
        device.channelVolumes.push_back(volumeControl(w));
    }
    return device;
}

std::vector<std::string> softwareLines(const std::string& uid, const std::string& level)
{
    return {"⚠️ Device " + uid + " does not support hardware volume. Using software volume: " + level,
            "📊 Software volume stored for " + uid + ": " + level,
            "💡 Note: Device may not support volume control. Consider using SoundSource or similar apps."};
}

// Levels are clamped before anything sees them.
TEST(Volume, VirtualMainVolumeGetsOneLineOfTheClampedLevel)
{
    SimAudio sim({virtualMain("vm")});
    for (const float level : {1.7f, -0.2f, std::numeric_limits<float>::quiet_NaN()}) {
        sim.audio.setVolume("vm", level);
    }
    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Volume set via VirtualMainVolume for vm: 1.0",
                                               "✅ Volume set via VirtualMainVolume for vm: 0.0",
                                               "✅ Volume set via VirtualMainVolume for vm: 1.0"));
}

TEST(Volume, PerChannelControlsGetTwoWritesAndOneLineEvenIfOneFailsOrIsMissing)
{
    // Channel two is written without asking whether it exists.
    SimAudio sim({perChannel("bt", {true, false}), perChannel("mono", {true})});
    sim.audio.setVolume("bt", 0.25f);
    sim.audio.setVolume("mono", 0.75f);
    const auto mono = std::to_string(sim.idOf("mono"));
    EXPECT_THAT(sim.calls({"set " + mono}), ElementsAre("set " + mono + " 'volm' outp 1 [4] 0.75 -> 0",
                                                        "set " + mono + " 'volm' outp 2 [4] 0.75 -> " +
                                                            std::to_string(hal::kAudioHardwareUnknownPropertyError)));
    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Volume set via VolumeScalar for bt: 0.25",
                                               "✅ Volume set via VolumeScalar for mono: 0.75"));
}

TEST(Volume, RefusingEveryControlOrHavingNoneFallsBackToSoftwareVolume)
{
    auto stubborn = virtualMain("stubborn", false);
    stubborn.channelVolumes = {volumeControl(false), volumeControl(false)};
    stubborn.mainVolume = volumeControl(false);
    SimAudio sim({stubborn, outputDevice("HDMI", "hdmi", hal::kAudioDeviceTransportTypeHDMI)});
    sim.audio.setVolume("stubborn", 0.3f);
    EXPECT_EQ(sim.printed.lines, softwareLines("stubborn", "0.3"));
    EXPECT_EQ(sim.calls({"set"}).size(), 4u);
    sim.reset();
    sim.audio.setVolume("hdmi", 0.8f);
    EXPECT_EQ(sim.printed.lines, softwareLines("hdmi", "0.8"));
    EXPECT_THAT(sim.calls({"set"}), IsEmpty());
    EXPECT_EQ(sim.audio.softwareVolumes().at("hdmi"), 0.8f);
    EXPECT_FALSE(sim.audio.deviceSupportsHardwareVolume().at("hdmi"));
}

TEST(Volume, SetsEveryDeviceThatSharesTheUIDAndNoneForAnUnknownOne)
{
    auto main = outputDevice("Main", "twin", hal::kAudioDeviceTransportTypeUSB);
    main.mainVolume = volumeControl();
    SimAudio sim({virtualMain("twin"), main});
    sim.audio.setVolume("twin", 0.5f);
    EXPECT_THAT(sim.printed.lines, ElementsAre("✅ Volume set via VirtualMainVolume for twin: 0.5",
                                               "✅ Volume set via Master Volume for twin: 0.5"));
    sim.reset();
    sim.audio.setVolume("nobody", 0.5f);
    EXPECT_THAT(sim.printed.lines, IsEmpty());
    EXPECT_THAT(sim.calls({"set", "has"}), IsEmpty());
}

TEST(HardwareVolumeMemo, TheProbesGuessHoldsUntilTheFirstSetThenTheSetsOutcomeIsRemembered)
{
    // Probed: per-channel no, a refusing virtual main volume yes, an unknown UID no (and probed again).
    SimAudio sim({perChannel("bt"), virtualMain("stubborn", false)});
    EXPECT_FALSE(sim.audio.supportsHardwareVolume("bt"));
    EXPECT_TRUE(sim.audio.supportsHardwareVolume("stubborn"));
    EXPECT_FALSE(sim.audio.supportsHardwareVolume("later"));
    sim.audio.setVolume("bt", 0.5f);
    sim.audio.setVolume("stubborn", 0.5f);
    sim.reset();
    EXPECT_TRUE(sim.audio.supportsHardwareVolume("bt"));
    EXPECT_FALSE(sim.audio.supportsHardwareVolume("stubborn"));
    EXPECT_THAT(sim.calls(), IsEmpty()); // answered from memory
    sim.system.addDevice(virtualMain("later"));
    EXPECT_TRUE(sim.audio.supportsHardwareVolume("later"));
}

} // namespace
} // namespace orvanta::testing

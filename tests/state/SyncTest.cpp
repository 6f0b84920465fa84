// Sync on and off over the simulated sound system, restoring it at start, and the warnings after Enable Sync.

#include "support/StateFixture.h"

#include "state/SyncWarnings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using Kind = state::SyncWarning::Kind;
using Warnings = std::vector<state::SyncWarning>;

const QString kBluetoothTail =
    QStringLiteral(". Bluetooth audio has inherent latency (100-200ms delay). For best sync, use wired connections or "
                   "check if your Bluetooth speaker supports direct wired connection to avoid audio delay.");
const QString kVolumeTail = QStringLiteral(". Consider using apps like SoundSource for software volume control.");

class Sync : public ::testing::Test, protected StateFixture
{
protected:
    // A run that turns sync on with both devices, the option switched on first or left as it is.
    void runOnceWithSync(bool restore = true)
    {
        if (start(); restore) {
            appState->setRestoreSyncAtStart(true);
        }
        selectBoth();
        appState->enableSync();
        ASSERT_TRUE(appState->isQuellonOn());
        appState.reset();
    }
    void expectNothingRestored()
    {
        start();
        EXPECT_FALSE(appState->selectedDevice1() || appState->selectedDevice2() || appState->isQuellonOn());
    }
    // The warnings after Enable Sync with the devices at these places in the list.
    Warnings warningsAfterSyncOn(std::size_t primary, std::size_t secondary)
    {
        appState->disableSync();
        appState->setSelectedDevice1(appState->devices()[primary]);
        appState->setSelectedDevice2(appState->devices()[secondary]);
        appState->enableSync();
        return state::SyncWarnings(sim.audio).afterEnableSync(*appState);
    }
};

TEST_F(Sync, StartUpReadsTheCatalogueButSelectsAndChangesNothingAndSyncNeedsTwoDifferentUIDsAndACreatedDevice)
{
    auto& app = start();
    EXPECT_EQ(app.devices(), (state::DeviceList{kSpeakers, kBluetooth}));
    EXPECT_FALSE(app.selectedDevice1() || app.selectedDevice2() || app.isQuellonOn() || app.canEnableSync());
    EXPECT_THAT(sim.printed.lines, IsEmpty());
    EXPECT_EQ(taps.created, 0);
    EXPECT_THAT(sim.calls({"set", "create", "destroy"}), IsEmpty());
    app.setSelectedDevice1(kSpeakers);
    sim.reset();
    app.enableSync();
    app.applyVolumes();
    EXPECT_FALSE(app.isQuellonOn());
    EXPECT_THAT(sim.calls(), IsEmpty());
    app.setSelectedDevice2(audio::AudioDeviceOption{"Renamed Speakers", "spk", true});
    EXPECT_FALSE(app.canEnableSync());
    app.setSelectedDevice2(kBluetooth);
    EXPECT_TRUE(app.canEnableSync());

    // A failed creation leaves sync off, without volumes or key tap.
    sim.system.addFailure(std::nullopt, {sim::CallKind::CreateAggregateDevice, {}, {}, {}, -50});
    sim.reset();
    app.enableSync();
    EXPECT_FALSE(app.isQuellonOn());
    EXPECT_THAT(sim.printed.lines, ElementsAre("❌ Create Error: -50"));
    EXPECT_THAT(sim.calls({"set"}), IsEmpty());
    EXPECT_EQ(taps.created, 0);
}

TEST_F(Sync, OnBuildsTheStackedDevicePushesVolumesAndStartsTheKeyTapAndOffUndoesAllButTheTap)
{
    auto& app = start();
    selectBoth();
    app.setVolume2(0.75f);
    app.setBluetoothDelay(150, kBluetooth);
    sim.reset();
    app.enableSync();
    EXPECT_TRUE(app.isQuellonOn());
    const auto stacked = std::to_string(sim.system.deviceWithUID(audio::stackedDeviceUID)->id);
    EXPECT_THAT(sim.calls({"create", "set"}),
                ElementsAre(HasSubstr("\"latency-out\"=6615u"), "set 1 'dOut' glob 0 [4] " + stacked + " -> 0",
                            "set 2 'vmvc' outp 0 [4] 0.5 -> 0", "set 3 'volm' outp 1 [4] 0.75 -> 0",
                            "set 3 'volm' outp 2 [4] 0.75 -> 0"));
    EXPECT_EQ(taps.created, 1);

    sim.reset();
    app.disableSync();
    EXPECT_FALSE(app.isQuellonOn());
    EXPECT_THAT(sim.printed.lines,
                ElementsAre("🗑️ Startup Cleanup: Old device destroyed.", "Returning audio to: spk"));
    EXPECT_EQ(sim.system.defaultOutputDevice(), sim.idOf("spk"));
    EXPECT_EQ(sim.system.deviceWithUID(audio::stackedDeviceUID), nullptr);
    EXPECT_TRUE(mediaKeys.hasTap());

    // Without a primary, off tears down without returning audio anywhere.
    app.enableSync();
    app.setSelectedDevice1(std::nullopt);
    sim.reset();
    app.disableSync();
    EXPECT_THAT(sim.printed.lines, ElementsAre("🗑️ Startup Cleanup: Old device destroyed."));
    EXPECT_THAT(sim.calls({"set"}), IsEmpty());
}

TEST_F(Sync, RestoreOffRestoresNothingAndSwitchedOnWhileSyncRunsBringsTheRunningPairBackUntilSwitchedOff)
{
    runOnceWithSync(false);
    expectNothingRestored();
    selectBoth();
    appState->enableSync();
    appState->setRestoreSyncAtStart(true);
    appState.reset();

    start();
    EXPECT_TRUE(appState->restoreSyncAtStart() && appState->isQuellonOn());
    EXPECT_EQ(std::pair(appState->selectedDevice1(), appState->selectedDevice2()),
              std::pair(std::optional(kSpeakers), std::optional(kBluetooth)));
    EXPECT_NE(sim.system.deviceWithUID(audio::stackedDeviceUID), nullptr);
    appState->setRestoreSyncAtStart(false);
    appState.reset();
    expectNothingRestored();
}

TEST_F(Sync, RestoreAMissingDeviceKeepsItWaitingUntilItIsListedOrTheUserChoosesForThemselves)
{
    runOnceWithSync();
    for (const bool userChooses : {false, true}) {
        appState.reset();
        ASSERT_TRUE(sim.system.removeDevice("bt"));
        start();
        EXPECT_FALSE(appState->isQuellonOn() || appState->selectedDevice1());
        if (userChooses) {
            appState->setSelectedDevice1(kSpeakers);
        }
        sim.system.addDevice(speakersAndBluetooth()[1]);
        appState->setDevices(sim.audio.getOutputDevices());
        EXPECT_EQ(appState->isQuellonOn(), !userChooses);
        EXPECT_EQ(appState->selectedDevice2() == kBluetooth, !userChooses);
    }
}

TEST_F(Sync, WarningsNameBluetoothSpeakersAsTheAudioLayerReportsThemAndDevicesWithoutAVolumeWhileOn)
{
    start();
    auto withVolume = outputDevice("B", "b", hal::kAudioDeviceTransportTypeBluetoothLE);
    withVolume.virtualMainVolume = volumeControl();
    for (const auto& device :
         {outputDevice("Wired A", "wa"), outputDevice("HDMI", "hdmi", hal::kAudioDeviceTransportTypeHDMI),
          outputDevice("A", "a", hal::kAudioDeviceTransportTypeBluetooth), withVolume}) {
        sim.system.addDevice(device);
    }
    appState->setDevices(sim.audio.getOutputDevices()); // Speakers, BT Speaker, Wired A, HDMI, A, B
    appState->setSelectedDevice1(kSpeakers);
    sim.reset();
    EXPECT_THAT(state::SyncWarnings(sim.audio).afterEnableSync(*appState), IsEmpty());
    EXPECT_THAT(sim.calls(), IsEmpty()); // nothing is asked without two devices

    EXPECT_EQ(
        warningsAfterSyncOn(4, 5),
        (Warnings{{Kind::Volume, "Volume Control Warning", "Volume control not supported: A" + kVolumeTail},
                  {Kind::Bluetooth, "Bluetooth Audio Latency", "Bluetooth device detected: A, B" + kBluetoothTail}}));
    EXPECT_EQ(warningsAfterSyncOn(2, 3), (Warnings{{Kind::Volume, "Volume Control Warning",
                                                    "Volume control not supported: Wired A, HDMI" + kVolumeTail}}));
    // The user's mark does not make a wired device one.
    appState->setManualBluetoothOverride(true, kSpeakers);
    EXPECT_EQ(warningsAfterSyncOn(0, 5), (Warnings{{Kind::Bluetooth, "Bluetooth Audio Latency",
                                                    "Bluetooth device detected: B" + kBluetoothTail}}));
    // Sync that failed to come on warns only of Bluetooth.
    sim.system.addFailure(std::nullopt, {sim::CallKind::CreateAggregateDevice, {}, {}, {}, -50});
    EXPECT_THAT(warningsAfterSyncOn(2, 4), ElementsAre(::testing::Field(&state::SyncWarning::kind, Kind::Bluetooth)));
}

} // namespace
} // namespace orvanta::testing

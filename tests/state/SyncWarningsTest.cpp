// The warnings after Enable Sync, decided without a window: each selected device is asked of the
// audio layer whether it is Bluetooth and whether it has a volume of its own.

#include "support/StateFixture.h"

#include "state/SyncWarnings.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using Kind = state::SyncWarning::Kind;
using ::testing::IsEmpty;

const QString kBluetoothTail =
    QStringLiteral(". Bluetooth audio has inherent latency (100-200ms delay). For best sync, use wired connections or "
                   "check if your Bluetooth speaker supports direct wired connection to avoid audio delay.");
const QString kVolumeTail = QStringLiteral(". Consider using apps like SoundSource for software volume control.");

class SyncWarnings : public ::testing::Test, protected StateFixture
{
protected:
    SyncWarnings()
        : StateFixture({outputDevice("Wired A", "wa"), outputDevice("HDMI", "hdmi", hal::kAudioDeviceTransportTypeHDMI),
                        outputDevice("A", "a", hal::kAudioDeviceTransportTypeBluetooth),
                        withVolume(outputDevice("B", "b", hal::kAudioDeviceTransportTypeBluetoothLE)),
                        withVolume(outputDevice("Desk", "desk"))})
    {
        start();
    }

    static sim::DeviceSpec withVolume(sim::DeviceSpec device)
    {
        device.virtualMainVolume = volumeControl();
        return device;
    }

    std::vector<state::SyncWarning> afterSyncOn(const std::string& primary, const std::string& secondary)
    {
        appState->disableSync();
        for (const auto& device : appState->devices()) {
            if (device.uid == primary) {
                appState->setSelectedDevice1(device);
            }
            if (device.uid == secondary) {
                appState->setSelectedDevice2(device);
            }
        }
        appState->enableSync();
        return state::SyncWarnings(sim.audio).afterEnableSync(*appState);
    }
};

TEST_F(SyncWarnings, BluetoothSpeakersAreNamedInOrderAsTheAudioLayerReportsThem)
{
    EXPECT_EQ(afterSyncOn("a", "b"),
              (std::vector<state::SyncWarning>{
                  {Kind::Volume, "Volume Control Warning", "Volume control not supported: A" + kVolumeTail},
                  {Kind::Bluetooth, "Bluetooth Audio Latency", "Bluetooth device detected: A, B" + kBluetoothTail}}));
    EXPECT_EQ(afterSyncOn("desk", "b"),
              (std::vector<state::SyncWarning>{
                  {Kind::Bluetooth, "Bluetooth Audio Latency", "Bluetooth device detected: B" + kBluetoothTail}}));
    // The user's mark does not make a wired device one.
    appState->setManualBluetoothOverride(true, appState->devices()[4]);
    EXPECT_EQ(afterSyncOn("desk", "b").size(), 1u);
}

TEST_F(SyncWarnings, EveryDeviceWithoutAVolumeOfItsOwnIsNamedWhileSyncIsOn)
{
    EXPECT_EQ(afterSyncOn("wa", "hdmi"),
              (std::vector<state::SyncWarning>{{Kind::Volume, "Volume Control Warning",
                                                "Volume control not supported: Wired A, HDMI" + kVolumeTail}}));
    // Sync that failed to come on warns only of Bluetooth.
    sim.system.addFailure(std::nullopt, {sim::CallKind::CreateAggregateDevice, {}, {}, {}, -50});
    const auto failed = afterSyncOn("wa", "a");
    ASSERT_FALSE(appState->isQuellonOn());
    ASSERT_EQ(failed.size(), 1u);
    EXPECT_EQ(failed[0].kind, Kind::Bluetooth);
}

TEST_F(SyncWarnings, NothingIsAskedWithoutTwoSelectedDevices)
{
    appState->setSelectedDevice1(appState->devices()[0]);
    sim.reset();
    EXPECT_THAT(state::SyncWarnings(sim.audio).afterEnableSync(*appState), IsEmpty());
    EXPECT_THAT(sim.calls(), IsEmpty());
}

} // namespace
} // namespace orvanta::testing

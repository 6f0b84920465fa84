// Restore sync at start: off, start-up selects nothing; on, the pair sync last ran with comes
// back once both devices are listed, and not after the user has chosen for themselves.

#include "support/StateFixture.h"

#include <gtest/gtest.h>

#include <QVariantMap>

namespace orvanta::testing {
namespace {

class SyncRestore : public ::testing::Test, protected StateFixture
{
protected:
    // A first run with the option on, sync on with both devices, then the program ends.
    void runOnceWithSync()
    {
        start();
        appState->setRestoreSyncAtStart(true);
        selectBoth();
        appState->enableSync();
        ASSERT_TRUE(appState->isQuellonOn());
        appState.reset();
    }
};

TEST_F(SyncRestore, OffByDefaultStartUpSelectsNothing)
{
    start();
    selectBoth();
    appState->enableSync();
    appState.reset();
    start();
    EXPECT_FALSE(appState->restoreSyncAtStart());
    EXPECT_FALSE(appState->selectedDevice1());
    EXPECT_FALSE(appState->selectedDevice2());
    EXPECT_FALSE(appState->isQuellonOn());
}

TEST_F(SyncRestore, OnTheLastPairComesBackWithSyncOn)
{
    runOnceWithSync();
    const QVariantMap stored = memoryDefaults.value(state::AppState::kRestoreDevicesKey).toMap();
    EXPECT_EQ(stored.value("primary").toString(), "spk");
    EXPECT_EQ(stored.value("secondary").toString(), "bt");
    EXPECT_EQ(memoryDefaults.value(state::AppState::kRestoreSyncKey).toBool(), true);

    start();
    EXPECT_TRUE(appState->restoreSyncAtStart());
    EXPECT_EQ(appState->selectedDevice1(), kSpeakers);
    EXPECT_EQ(appState->selectedDevice2(), kBluetooth);
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_NE(sim.system.deviceWithUID("com.quellon.stacked"), nullptr);
}

TEST_F(SyncRestore, SwitchedOnWhileSyncRunsRemembersTheRunningPair)
{
    start();
    selectBoth();
    appState->enableSync();
    EXPECT_FALSE(memoryDefaults.value(state::AppState::kRestoreDevicesKey).isValid());
    appState->setRestoreSyncAtStart(true);
    EXPECT_EQ(memoryDefaults.value(state::AppState::kRestoreDevicesKey).toMap().value("secondary").toString(), "bt");
}

TEST_F(SyncRestore, AMissingDeviceKeepsItWaitingUntilItIsListedOrTheUserChoosesForThemselves)
{
    runOnceWithSync();
    ASSERT_TRUE(sim.system.removeDevice("bt"));
    start();
    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(appState->selectedDevice1());
    sim.system.addDevice(speakersAndBluetooth()[1]);
    appState->setDevices(sim.audio.getOutputDevices());
    EXPECT_TRUE(appState->isQuellonOn());
    EXPECT_EQ(appState->selectedDevice2(), kBluetooth);

    appState.reset();
    ASSERT_TRUE(sim.system.removeDevice("bt"));
    start();
    appState->setSelectedDevice1(kSpeakers);
    sim.system.addDevice(speakersAndBluetooth()[1]);
    appState->setDevices(sim.audio.getOutputDevices());
    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(appState->selectedDevice2());
}

TEST_F(SyncRestore, SwitchingItOffIsStoredAndStartsNothingNextTime)
{
    runOnceWithSync();
    start();
    appState->setRestoreSyncAtStart(false);
    appState.reset();
    start();
    EXPECT_FALSE(appState->isQuellonOn());
    EXPECT_FALSE(appState->selectedDevice1());
}

} // namespace
} // namespace orvanta::testing

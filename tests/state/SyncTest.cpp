#include "support/EventLoop.h"
#include "support/StateFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class Sync : public ::testing::Test, protected StateFixture
{};

TEST_F(Sync, StartUpReadsTheCatalogueButSelectsAndChangesNothing)
{
    auto& app = start();
    EXPECT_EQ(app.devices(), (state::DeviceList{kSpeakers, kBluetooth}));
    EXPECT_FALSE(app.selectedDevice1() || app.selectedDevice2() || app.isQuellonOn());
    EXPECT_THAT(sim.calls({"set", "create", "destroy"}), IsEmpty());
    EXPECT_THAT(sim.printed.lines, IsEmpty());
    EXPECT_EQ(taps.created, 0);
}

TEST_F(Sync, OnBuildsTheStackedDevicePushesVolumesAndStartsTheKeyTap)
{
    auto& app = start();
    selectBoth();
    app.setVolume2(0.75f);
    app.setBluetoothDelay(150, kBluetooth);
    sim.reset();

    app.enableSync();

    EXPECT_TRUE(app.isQuellonOn());
    const auto stacked = std::to_string(sim.system.deviceWithUID(audio::stackedDeviceUID)->id);
    EXPECT_THAT(sim.printed.lines,
                ElementsAre("✅ Sync Device Created! ID: " + stacked + ", latency1=0ms latency2=150ms",
                            "✅ Volume set via VirtualMainVolume for spk: 0.5",
                            "✅ Volume set via VolumeScalar for bt: 0.75"));
    EXPECT_THAT(sim.calls({"create", "set"}),
                ElementsAre(::testing::HasSubstr("\"latency-out\"=6615u"),
                            "set 1 'dOut' glob 0 [4] " + stacked + " -> 0", "set 2 'vmvc' outp 0 [4] 0.5 -> 0",
                            "set 3 'volm' outp 1 [4] 0.75 -> 0", "set 3 'volm' outp 2 [4] 0.75 -> 0"));
    EXPECT_EQ(taps.created, 1);
}

TEST_F(Sync, OffDestroysTheDeviceAndReturnsAudioButKeepsTheTap)
{
    auto& app = start();
    selectBoth();
    app.enableSync();
    sim.reset();

    app.disableSync();

    EXPECT_FALSE(app.isQuellonOn());
    EXPECT_THAT(sim.printed.lines,
                ElementsAre("🗑️ Startup Cleanup: Old device destroyed.", "Returning audio to: spk"));
    EXPECT_EQ(sim.system.defaultOutputDevice(), sim.idOf("spk"));
    EXPECT_EQ(sim.system.deviceWithUID(audio::stackedDeviceUID), nullptr);
    EXPECT_TRUE(mediaKeys.hasTap());
}

TEST_F(Sync, CanEnableOnlyWithTwoDifferentUIDsAndOneSelectionChangesAndCallsNothing)
{
    auto& app = start();
    EXPECT_FALSE(app.canEnableSync());
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
}

TEST_F(Sync, FailedCreationLeavesSyncOffWithoutVolumesOrTap)
{
    sim.system.addFailure(std::nullopt, {sim::CallKind::CreateAggregateDevice, {}, {}, {}, -50});
    auto& app = start();
    selectBoth();
    sim.reset();
    app.enableSync();
    EXPECT_FALSE(app.isQuellonOn());
    EXPECT_THAT(sim.printed.lines, ElementsAre("❌ Create Error: -50"));
    EXPECT_THAT(sim.calls({"set"}), IsEmpty());
    EXPECT_EQ(taps.created, 0);
}

TEST_F(Sync, OffWithoutPrimaryTearsDownWithoutReturningAudio)
{
    auto& app = start();
    selectBoth();
    app.enableSync();
    app.setSelectedDevice1(std::nullopt);
    sim.reset();
    app.disableSync();
    EXPECT_FALSE(app.isQuellonOn());
    EXPECT_THAT(sim.printed.lines, ElementsAre("🗑️ Startup Cleanup: Old device destroyed."));
    EXPECT_THAT(sim.calls({"set"}), IsEmpty());
}

TEST_F(Sync, SelectionSurvivesARefreshThatNoLongerListsIt)
{
    auto& app = start();
    selectBoth();
    sim.system.removeDevice("bt");
    app.setDevices(sim.audio.getOutputDevices());
    ASSERT_EQ(app.devices().size(), 1u);
    EXPECT_EQ(app.selectedDevice2(), kBluetooth);
    sim.reset();
    app.enableSync();
    EXPECT_THAT(sim.calls({"create"}), ElementsAre(::testing::HasSubstr("\"uid\"=\"bt\"")));
}

TEST_F(Sync, MasterVolumeStepsClampEachVolumeSeparately)
{
    auto& app = start();
    selectBoth();
    app.setVolume1(0.95f);
    app.adjustMasterVolume(0.0625f);
    EXPECT_EQ(app.volume1(), 1.0f);
    EXPECT_EQ(app.volume2(), 0.5625f);

    app.setVolume1(0.03f);
    app.adjustMasterVolume(-0.0625f);
    EXPECT_EQ(app.volume1(), 0.0f);
    EXPECT_EQ(app.volume2(), 0.5f);
    EXPECT_EQ(sim.printed.lines.back(), "✅ Volume set via VolumeScalar for bt: 0.5");
}

TEST_F(Sync, EveryAssignmentIsAnnouncedEvenWhenEqual)
{
    auto& app = start();
    int volumeSignals = 0;
    int selectionSignals = 0;
    int syncSignals = 0;
    QObject::connect(&app, &state::AppState::volume1Changed, [&] { ++volumeSignals; });
    QObject::connect(&app, &state::AppState::selectedDevice1Changed, [&] { ++selectionSignals; });
    QObject::connect(&app, &state::AppState::isQuellonOnChanged, [&] { ++syncSignals; });
    app.setVolume1(0.5f);
    app.setVolume1(0.5f);
    app.setSelectedDevice1(std::nullopt);
    app.disableSync();
    app.disableSync();
    EXPECT_EQ(volumeSignals, 2);
    EXPECT_EQ(selectionSignals, 1);
    EXPECT_EQ(syncSignals, 2);
}

} // namespace
} // namespace orvanta::testing

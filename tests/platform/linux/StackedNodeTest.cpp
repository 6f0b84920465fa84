// The stacked device hosted as a PipeWire node, with the meter rig's sinks for members: in step from
// the first sound, changed live without a gap or a click, picking up a member that comes back.

#include "support/LatencyProbe.h"
#include "support/OffsetMeter.h"
#include "support/ServerFixture.h"

#include "pulse/PulseObjects.h"

#include <QThread>

#include <algorithm>

namespace orvanta::testing {
namespace {

constexpr double kExactMs = 0.1;

class StackedNode : public ::testing::Test, public ServerFixture
{
protected:
    void SetUp() override
    {
        startServer(SoundServer::Kind::PipeWire, 3, [this] { ASSERT_TRUE(loadMeterRig(*server)); });
    }
};

TEST_F(StackedNode, ALeftoverOfTheLoopbackDesignIsRemovedByTheNextSync)
{
    ASSERT_GE(server->loadModule("module-null-sink", {"sink_name=com.quellon.stacked"}), 0);
    ASSERT_GE(server->loadModule("module-loopback", {"source=com.quellon.stacked.monitor", "sink=mB"}), 0);
    // As at a start after an earlier run: Orvanta has seen the leftover sink and its loopback.
    ASSERT_TRUE(eventually([this] {
        return backend.connection->withMirror([](const pulse::PulseMirror& mirror) {
            return !pulse::loopbacksFrom(mirror, "com.quellon.stacked").empty();
        });
    }));

    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 20), hal::noErr);
    EXPECT_EQ(printed.lines.front(), "🗑️ Startup Cleanup: Old device destroyed.");
    EXPECT_EQ(server->sinksNamed("com.quellon.stacked"), 1);
    // The server lists an unloaded module for a moment longer.
    EXPECT_TRUE(eventually([this] { return server->moduleLoading("module-loopback").isEmpty(); }));
    EXPECT_TRUE(server->moduleLoading("sink_name=com.quellon.stacked").isEmpty());
}

TEST_F(StackedNode, AMemberThatComesBackIsInStepAgainWithinASecond)
{
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 150), hal::noErr);
    const QString mB = server->moduleLoading("sink_name=mB");
    const QStringList mBArguments = server->modules("sink_name=mB").value(0).split(' ');
    ASSERT_FALSE(server->pactl({"unload-module", mB}).isNull());
    ASSERT_TRUE(eventually([this] { return !node->stackedNode()->memberLinked("mB"); }, 5000));

    // The other member plays on alone.
    {
        Recorder recorder(*server);
        Player player(*server, clickTrack(0.5, {0.1}));
        ASSERT_TRUE(player.waitUntilDone());
        EXPECT_EQ(clickOnsets(recorder.stop(500), kMemberA).size(), 1u);
    }

    ASSERT_GE(server->loadModule("module-remap-sink", mBArguments), 0);
    EXPECT_TRUE(eventually([this] { return node->stackedNode()->memberLinked("mB"); }, 1000));
    const auto offset = measureOffsetMs(*server);
    ASSERT_TRUE(offset.has_value());
    EXPECT_NEAR(*offset, 150.0, kExactMs);
}

TEST_F(StackedNode, ItsOwnVolumeScalesBothMembersAndLeavesTheirsAlone)
{
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 0), hal::noErr);
    const auto before = measureMemberLevels(*server);
    // What the desktop's volume keys do while the stacked device is the default output.
    ASSERT_FALSE(server->pactl({"set-sink-volume", "@DEFAULT_SINK@", "50%"}).isNull());
    const auto after = measureMemberLevels(*server);
    ASSERT_TRUE(before && after);
    const double primary = after->primary / before->primary;
    const double secondary = after->secondary / before->secondary;
    // 50 % on the mixer's scale is 0.125 of the amplitude.
    EXPECT_NEAR(primary, 0.125, 0.02);
    EXPECT_NEAR(secondary, primary, 0.01);
    EXPECT_TRUE(server->pactl({"get-sink-volume", "mA"}).contains(" 100% "));
}

// Both directions of a delay: the primary (mA) or the secondary (mB) declares it.
struct Delays
{
    int primaryMs;
    int secondaryMs;
};

class StackedNodeOffset : public StackedNode, public ::testing::WithParamInterface<Delays>
{
protected:
    // Builds the stacked device, plays two clicks into it from 100 ms on, and takes it down
    // once the held-back member has played them too.
    void playOneBuild(int primaryMs, int secondaryMs)
    {
        ASSERT_EQ(audio->createStackedDevice("mA", "mB", primaryMs, secondaryMs), hal::noErr);
        Player player(*server, clickTrack(1.0, {0.1, 0.85}));
        ASSERT_TRUE(player.waitUntilDone());
        QThread::msleep(static_cast<unsigned long>(std::max(primaryMs, secondaryMs) + 300));
        audio->destroyOldStackedDevices();
    }
};

TEST_P(StackedNodeOffset, EveryClickOfTenRebuildsIsExactFromTheStart)
{
    const auto [primaryMs, secondaryMs] = GetParam();
    playOneBuild(secondaryMs, primaryMs); // a server that has played and rebuilt before
    constexpr int kBuilds = 10;
    Recorder recorder(*server);
    for (int build = 0; build < kBuilds; ++build) {
        playOneBuild(primaryMs, secondaryMs);
    }
    const auto recording = recorder.stop(200);
    const auto a = clickOnsets(recording, kMemberA);
    const auto b = clickOnsets(recording, kMemberB);
    // A member that played early would add clicks of its own.
    ASSERT_EQ(a.size(), 2u * kBuilds);
    ASSERT_EQ(b.size(), 2u * kBuilds);
    for (std::size_t i = 0; i < a.size(); ++i) {
        const double offset = static_cast<double>(a[i] - b[i]) * 1000.0 / kMeterRate;
        EXPECT_NEAR(offset, secondaryMs - primaryMs, kExactMs) << "click " << i;
    }
}

INSTANTIATE_TEST_SUITE_P(Delays, StackedNodeOffset,
                         ::testing::Values(Delays{0, 0}, Delays{0, 5}, Delays{150, 0}, Delays{0, 600}),
                         [](const auto& param) {
                             return std::to_string(param.param.primaryMs) + "_" +
                                    std::to_string(param.param.secondaryMs);
                         });

void expectClean(const std::optional<ToneCheck>& tone)
{
    ASSERT_TRUE(tone.has_value()) << "no undisturbed run in three";
    EXPECT_LT(tone->longestGapMs, 1.0);
    EXPECT_LE(tone->largestStep, tone->toneStep * 1.05);
    EXPECT_TRUE(tone->finiteWithinScale);
}

TEST_F(StackedNode, LiveChangesLeaveNoGapNoClickAndNoSampleOutOfRangeAndEndExact)
{
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 0), hal::noErr);
    int delay = 0;
    expectClean(changedMemberTone(*server, 6.5, [&] {
        audio->setRuntimeLatency("mB", 0);
        QThread::msleep(800);
        audio->setRuntimeLatency("mB", 600); // one long jump, faded in full
        QThread::msleep(1200);
        for (int change = 0; change < 300; ++change) {
            delay = (delay + 211) % 601; // a slider dragged back and forth, unevenly
            audio->setRuntimeLatency("mB", delay);
            QThread::msleep(10);
        }
    }));
    QThread::msleep(100);
    const auto offset = measureOffsetMs(*server);
    ASSERT_TRUE(offset.has_value());
    EXPECT_NEAR(*offset, delay, kExactMs);
}

class StackedNodeLatency : public StackedNode, public ::testing::WithParamInterface<int>
{};

// A stream's told latency is an estimate from the server's last timing update, a millisecond or
// two apart on a loaded machine: the median of three probes is compared. A latency told wrong is
// wrong in every probe.
TEST_P(StackedNodeLatency, APlayerIsToldTheLatencyToTheLaterMember)
{
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, GetParam()), hal::noErr);
    std::vector<double> errors;
    for (int round = 0; round < 3; ++round) {
        const auto probe = probeLatency(*server);
        ASSERT_TRUE(probe.has_value());
        errors.push_back(probe->errorMs());
    }
    std::sort(errors.begin(), errors.end());
    RecordProperty("told_minus_measured_ms", std::to_string(errors[1]));
    EXPECT_NEAR(errors[1], 0.0, 2.0) << "told minus measured: " << errors[0] << ", " << errors[1] << ", " << errors[2];
}

INSTANTIATE_TEST_SUITE_P(Delays, StackedNodeLatency, ::testing::Values(0, 150));

} // namespace
} // namespace orvanta::testing

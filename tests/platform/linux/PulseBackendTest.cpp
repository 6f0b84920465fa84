// The audio layer over a private PulseAudio and a private PipeWire, null sinks standing in for speakers,
// with the backend the program chooses (the loopback design on PulseAudio, the hosted node on PipeWire).

#include "support/ServerFixture.h"

#include "pulse/PulseObjects.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QHash>
#include <QThread>

#include <cstdlib>

namespace orvanta::testing {
namespace {

using ::testing::ElementsAre;
using Kind = SoundServer::Kind;

class PulseBackend : public ::testing::TestWithParam<Kind>, public ServerFixture
{
protected:
    void SetUp() override
    {
        startServer(GetParam(), 2, [this] {
            for (const char* device : {"spk", "bt", "mic"}) {
                load(device);
            }
        });
    }

    // The sinks and the input-only device (a source that is not a monitor) a test may load.
    void load(const QString& device)
    {
        static const QHash<QString, QStringList> arguments{
            {"spk", {"sink_name=spk", "rate=48000", "sink_properties=device.description=Speakers"}},
            {"bt",
             {"sink_name=bt", "rate=44100", "sink_properties='device.description=BT-Speaker device.bus=bluetooth'"}},
            {"mic", {"master=spk.monitor", "source_name=mic", "source_properties=device.description=Microphone"}}};
        ASSERT_GE(server->loadModule(device == "mic" ? "module-remap-source" : "module-null-sink", arguments[device]),
                  0);
    }

    QStringList loopbacks() const { return server->modules("module-loopback"); }

    void killServer()
    {
        server->kill();
        ASSERT_TRUE(eventually([this] { return audio->getOutputDevices().empty(); }));
        printed.lines.clear();
    }

    // Whether the stacked device plays through both members, spk held back by spkMs and bt by
    // btMs: one loopback each on PulseAudio, the hosted node's streams on PipeWire.
    bool holdsBack(unsigned spkMs, unsigned btMs) const
    {
        if (node) {
            const auto* stacked = node->stackedNode();
            return stacked && server->sinksNamed("com.quellon.stacked") == 1 && stacked->memberLinked("spk") &&
                   stacked->memberLinked("bt") && stacked->holdBack("spk") == spkMs * 48 &&
                   stacked->holdBack("bt") == btMs * 48;
        }
        return loopbacks() ==
               QStringList{loopback("bt", static_cast<int>(30 + btMs)), loopback("spk", static_cast<int>(30 + spkMs))};
    }

    static QString loopback(const QString& sink, int latencyMs)
    {
        return QString("source=com.quellon.stacked.monitor sink=%1 latency_msec=%2 source_dont_move=true "
                       "sink_dont_move=true")
            .arg(sink)
            .arg(latencyMs);
    }
};

// The stacked device as a null sink with loopbacks: PulseAudio.
using LoopbackBackend = PulseBackend;

TEST_P(PulseBackend, CatalogueListsSinksWithTheirRatesAndSkipsInputs)
{
    EXPECT_THAT(audio->getOutputDevices(), ElementsAre(audio::AudioDeviceOption{"Speakers", "spk", false},
                                                       audio::AudioDeviceOption{"BT-Speaker", "bt", true}));
    EXPECT_EQ(audio->getNominalSampleRate("spk"), 48000.0);
    EXPECT_EQ(audio->getNominalSampleRate("bt"), 44100.0);
    EXPECT_FALSE(audio->isBluetoothDevice("mic"));
    EXPECT_TRUE(audio->supportsHardwareVolume("spk"));
}

TEST_P(PulseBackend, SyncOnMakesTheStackedSinkTheDefaultAndSyncOffTakesItAway)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    // PipeWire's session manager applies a new default a moment after the server confirms it.
    EXPECT_TRUE(eventually([this] { return server->defaultSink() == "com.quellon.stacked"; }));
    EXPECT_EQ(audio->getOutputDevices().size(), 2u); // the stacked sink stays hidden
    // The secondary declares 150 ms, so the primary is held back by 150 ms.
    EXPECT_TRUE(eventually([this] { return holdsBack(150, 0); }));

    audio->destroyOldStackedDevices();
    audio->returnAudio("spk");
    EXPECT_TRUE(eventually([this] { return server->defaultSink() == "spk"; }));
    EXPECT_TRUE(loopbacks().isEmpty());
    EXPECT_EQ(server->sinksNamed("com.quellon.stacked"), 0);
}

TEST_P(PulseBackend, VolumeIsTheSinksVolumeOnTheMixersPercentScaleAndKeepsTheSpeakersBalance)
{
    audio->setVolume("spk", 0.25f);
    EXPECT_THAT(printed.lines, ElementsAre("✅ Volume set via VirtualMainVolume for spk: 0.25"));
    const QString quarter = server->pactl({"get-sink-volume", "spk"});
    EXPECT_EQ(quarter.count(" 25% "), 2) << quarter.toStdString();

    ASSERT_FALSE(server->pactl({"set-sink-volume", "spk", "40%", "80%"}).isNull());
    // Until the backend's mirror has heard of the new volume.
    ASSERT_TRUE(eventually([this] {
        return backend.connection->withMirror([](const pulse::PulseMirror& mirror) {
            const auto* sink = pulse::sinkNamed(mirror, "spk");
            // Both channels as set: a server may announce the change in steps.
            return sink && pa_cvolume_max(&sink->volume) > PA_VOLUME_NORM * 3 / 4 &&
                   pa_cvolume_min(&sink->volume) < PA_VOLUME_NORM / 2;
        });
    }));
    audio->setVolume("spk", 0.5f);
    const QString volume = server->pactl({"get-sink-volume", "spk"});
    EXPECT_TRUE(volume.contains(" 25% ") && volume.contains(" 50% ")) << volume.toStdString();
}

TEST_P(PulseBackend, AHungServerHoldsNoActionLongerThanItsBoundAndEndsAsTheProgramBelieves)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 0), hal::noErr);
    ASSERT_TRUE(eventually([this] { return holdsBack(0, 0); }));
    printed.lines.clear();
    server->freeze();
    QElapsedTimer clock;
    clock.start();
    audio->setRuntimeLatency("bt", 150);
    audio->setVolume("spk", 0.3f);
    const qint64 delayChange = clock.restart();
    server->thaw();
    EXPECT_LT(delayChange, 2500);
    // Applied, or reported as failed and then not applied at all: one loopback per member.
    ASSERT_FALSE(printed.lines.empty());
    const unsigned spkMs = printed.lines.front().starts_with("⏱️") ? 150 : 0;
    EXPECT_TRUE(eventually([&] { return holdsBack(spkMs, 0); })) << printed.lines.front();
    QThread::msleep(1000); // what the server carries out late is taken back
    EXPECT_TRUE(holdsBack(spkMs, 0)) << loopbacks().join('\n').toStdString();

    server->freeze();
    clock.restart();
    audio->destroyOldStackedDevices();
    audio->returnAudio("spk");
    const qint64 syncOff = clock.elapsed();
    server->thaw();
    // One bound (2 s) for the first unanswered write, brief waits for the rest of the action.
    EXPECT_LT(syncOff, 2500);
    EXPECT_TRUE(eventually([this] { return server->sinksNamed("com.quellon.stacked") == 0; }));
    EXPECT_TRUE(loopbacks().isEmpty());
}

TEST_P(PulseBackend, ASyncOnRefusedForItsDelayOrNeverAnsweredLeavesNothingBehind)
{
    const QString before = server->defaultSink();
    EXPECT_NE(audio->createStackedDevice("spk", "bt", 0, 2000000000), hal::noErr);
    EXPECT_EQ(server->sinksNamed("com.quellon.stacked"), 0);
    EXPECT_TRUE(loopbacks().isEmpty());
    EXPECT_EQ(server->defaultSink(), before);

    server->freeze();
    QElapsedTimer clock;
    clock.start();
    const auto status = audio->createStackedDevice("spk", "bt", 0, 150);
    const qint64 blocked = clock.elapsed();
    server->thaw();
    EXPECT_NE(status, hal::noErr);
    EXPECT_LT(blocked, 2500);
    for (const auto& line : printed.lines) {
        EXPECT_THAT(line, ::testing::Not(::testing::StartsWith("✅")));
    }
    // What the server carries out once it runs again is taken back.
    QThread::msleep(1000);
    EXPECT_TRUE(eventually([this] { return server->sinksNamed("com.quellon.stacked") == 0; }));
    EXPECT_TRUE(loopbacks().isEmpty());
}

TEST_P(PulseBackend, AVanishedServerGivesStatusesAtOnceAndASyncOffMeanwhileHolds)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    killServer();
    QElapsedTimer clock;
    clock.start();
    audio->setVolume("spk", 0.5f);
    audio->destroyOldStackedDevices();
    audio->returnAudio("spk");
    EXPECT_EQ(audio->createStackedDevice("spk", "bt", 0, 150), hal::kAudioHardwareNotRunningError);
    EXPECT_LT(clock.elapsed(), 500);

    ASSERT_TRUE(server->start());
    load("spk");
    load("bt");
    ASSERT_TRUE(eventually([this] { return audio->getOutputDevices().size() == 2; }, 10000));
    QThread::msleep(1500); // time enough for a stacked device to be rebuilt, were it still meant
    EXPECT_EQ(server->sinksNamed("com.quellon.stacked"), 0);
    EXPECT_TRUE(loopbacks().isEmpty());
}

TEST_P(PulseBackend, ARestartedServerGetsTheDelaySetMeanwhileAndAMemberThatComesLate)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    killServer();
    audio->setRuntimeLatency("spk", 400);

    ASSERT_TRUE(server->start());
    load("spk");
    ASSERT_TRUE(eventually([this] { return audio->getOutputDevices().size() == 1; }, 10000));
    QThread::msleep(2000);
    load("bt");
    // spk now declares 400 ms and bt 150 ms: bt waits 250 ms for spk.
    EXPECT_TRUE(eventually([this] { return holdsBack(0, 250); }, 5000)) << loopbacks().join('\n').toStdString();
}

TEST_P(LoopbackBackend, ADraggedSliderNeverPilesUpLoopbacksAndQuittingMidHandOverLeavesOnePerMember)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 0), hal::noErr);
    int most = 0;
    int delay = 0;
    for (int change = 0; change < 300; ++change) {
        delay = (delay + 211) % 601;
        audio->setRuntimeLatency("bt", delay);
        QThread::msleep(10);
        if (change % 10 == 0) {
            for (const QString member : {"sink=spk", "sink=bt"}) {
                most = std::max(most, static_cast<int>(loopbacks().filter(member + " ").size()));
            }
        }
    }
    // The one that plays and the one waiting to take over, at most.
    EXPECT_LE(most, 2);
    ASSERT_TRUE(eventually([this] { return loopbacks().size() == 2; }, 3000));
    EXPECT_EQ(loopbacks(), (QStringList{loopback("bt", 30), loopback("spk", 30 + delay)}));

    audio->setRuntimeLatency("bt", 300);
    ASSERT_EQ(loopbacks().size(), 3); // the old spk loopback still plays
    audio.reset();
    backend.hardware.reset();
    // The stacked device stays in the server, as it was last set.
    EXPECT_EQ(loopbacks(), (QStringList{loopback("bt", 30), loopback("spk", 330)}));
}

INSTANTIATE_TEST_SUITE_P(Servers, PulseBackend, ::testing::Values(Kind::PulseAudio, Kind::PipeWire),
                         [](const auto& param) { return std::string(SoundServer::name(param.param)); });
INSTANTIATE_TEST_SUITE_P(Servers, LoopbackBackend, ::testing::Values(Kind::PulseAudio),
                         [](const auto& param) { return std::string(SoundServer::name(param.param)); });

} // namespace
} // namespace orvanta::testing

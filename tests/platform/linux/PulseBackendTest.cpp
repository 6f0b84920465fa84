// The audio layer over a real sound server: a private PulseAudio and a private PipeWire with its
// pulse server, each with null sinks standing in for speakers, and the backend chosen as the
// program chooses it (the loopback design on PulseAudio, the hosted node on PipeWire).

#include "support/EventLoop.h"
#include "support/SoundServer.h"

#include "app/AudioBackend.h"
#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"
#include "pipewire/PipeWireAudioHardware.h"
#include "pulse/PulseAudioHardware.h"
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

class PulseBackend : public ::testing::TestWithParam<Kind>
{
protected:
    void SetUp() override
    {
        server = std::make_unique<SoundServer>(GetParam());
        ASSERT_TRUE(server->start()) << SoundServer::name(GetParam()) << " did not start";
        loadDevices();
        connect();
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

    void loadDevices()
    {
        for (const char* device : {"spk", "bt", "mic"}) {
            load(device);
        }
    }

    void connect()
    {
        ::setenv("ORVANTA_AUDIO", "auto", 1);
        backend = app::chooseAudioBackend();
        ASSERT_EQ(backend.description, GetParam() == Kind::PipeWire ? "Using PipeWire" : "Using PulseAudio");
        audio = std::make_unique<audio::AudioWrapper>(*backend.hardware, printed.log());
        ASSERT_TRUE(eventually([this] { return audio->getOutputDevices().size() == 2; }));
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
        if (const auto* hosted = dynamic_cast<pipewire::PipeWireAudioHardware*>(backend.hardware.get())) {
            const auto* node = hosted->stackedNode();
            return node && server->sinksNamed("com.quellon.stacked") == 1 && node->memberLinked("spk") &&
                   node->memberLinked("bt") && node->holdBack("spk") == spkMs * 48 && node->holdBack("bt") == btMs * 48;
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

    std::unique_ptr<SoundServer> server;
    core::CollectedLines printed;
    app::AudioBackend backend;
    std::unique_ptr<audio::AudioWrapper> audio;
};

// The stacked device as a null sink with loopbacks: PulseAudio.
using LoopbackBackend = PulseBackend;

TEST_P(PulseBackend, CatalogueListsSinksWithTheirRatesAndSkipsInputs)
{
    EXPECT_THAT(audio->getOutputDevices(), ElementsAre(audio::AudioDeviceOption{"Speakers", "spk", false},
                                                       audio::AudioDeviceOption{"BT-Speaker", "bt", true}));
    EXPECT_EQ(audio->getNominalSampleRate("spk"), 48000.0);
    EXPECT_EQ(audio->getNominalSampleRate("bt"), 44100.0);
    EXPECT_TRUE(audio->isBluetoothDevice("bt"));
    EXPECT_FALSE(audio->isBluetoothDevice("mic"));
    EXPECT_TRUE(audio->supportsHardwareVolume("spk"));
}

TEST_P(PulseBackend, SyncOnMakesTheStackedSinkTheDefaultAndSyncOffTakesItAway)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    ASSERT_EQ(printed.lines.size(), 1u);
    EXPECT_THAT(printed.lines[0], ::testing::MatchesRegex("✅ Sync Device Created! ID: [0-9]+, "
                                                          "latency1=0ms latency2=150ms"));
    // PipeWire's session manager applies a new default a moment after the server confirms it.
    EXPECT_TRUE(eventually([this] { return server->defaultSink() == "com.quellon.stacked"; }));
    EXPECT_EQ(audio->getOutputDevices().size(), 2u); // the stacked sink stays hidden
    EXPECT_TRUE(audio->findStackedDeviceID().has_value());
    // The secondary declares 150 ms, so the primary is held back by 150 ms.
    EXPECT_TRUE(eventually([this] { return holdsBack(150, 0); }));

    printed.lines.clear();
    audio->destroyOldStackedDevices();
    audio->returnAudio("spk");
    EXPECT_THAT(printed.lines,
                ElementsAre("🗑️ Startup Cleanup: Old device destroyed.", "Returning audio to: spk"));
    EXPECT_TRUE(eventually([this] { return server->defaultSink() == "spk"; }));
    EXPECT_TRUE(loopbacks().isEmpty());
    EXPECT_EQ(server->sinksNamed("com.quellon.stacked"), 0);
}

TEST_P(LoopbackBackend, LeftoverFromAnEarlierRunIsRemovedByTheNextSync)
{
    ASSERT_GE(server->loadModule("module-null-sink", {"sink_name=com.quellon.stacked"}), 0);
    ASSERT_GE(server->loadModule("module-loopback", loopback("bt", 45).split(' ')), 0);
    ASSERT_TRUE(eventually([this] { return audio->findStackedDeviceID().has_value(); }));

    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 20, 0), hal::noErr);
    EXPECT_EQ(printed.lines.front(), "🗑️ Startup Cleanup: Old device destroyed.");
    EXPECT_EQ(server->sinksNamed("com.quellon.stacked"), 1);
    EXPECT_EQ(loopbacks(), (QStringList{loopback("bt", 50), loopback("spk", 30)}));
}

TEST_P(LoopbackBackend, RuntimeLatencyRetimesTheLoopbacksWithoutStoppingThem)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 0), hal::noErr);
    printed.lines.clear();
    audio->setRuntimeLatency("bt", 150);
    EXPECT_THAT(printed.lines, ElementsAre("⏱️ Real-time latency set on bt: 150ms (6615.0 frames)"));
    // Made before broken: the new loopback runs beside the old one until it plays.
    EXPECT_EQ(loopbacks().size(), 3);
    ASSERT_TRUE(eventually([this] { return loopbacks().size() == 2; }));
    EXPECT_EQ(loopbacks(), (QStringList{loopback("bt", 30), loopback("spk", 180)}));

    printed.lines.clear();
    audio->setRuntimeLatency("spk", 600);
    ASSERT_TRUE(eventually([this] { return loopbacks().size() == 2; }));
    EXPECT_EQ(loopbacks(), (QStringList{loopback("bt", 480), loopback("spk", 30)}));
    EXPECT_THAT(printed.lines, ElementsAre("⏱️ Real-time latency set on spk: 600ms (28800.0 frames)"));
}

TEST_P(PulseBackend, VolumeIsTheSinksVolumeOnTheMixersPercentScaleAndKeepsTheSpeakersBalance)
{
    audio->setVolume("spk", 0.25f);
    EXPECT_THAT(printed.lines, ElementsAre("✅ Volume set via VirtualMainVolume for spk: 0.25"));
    const QString quarter = server->pactl({"get-sink-volume", "spk"});
    EXPECT_EQ(quarter.count(" 25% "), 2) << quarter.toStdString();
    EXPECT_TRUE(audio->deviceSupportsHardwareVolume().at("spk"));

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
    EXPECT_THAT(printed.lines,
                ElementsAre("🗑️ Startup Cleanup: Old device destroyed.", "❌ Create Error: 1937010544"));

    ASSERT_TRUE(server->start());
    loadDevices();
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
    EXPECT_THAT(printed.lines, ElementsAre("⏱️ Real-time latency set on spk: 400ms (19200.0 frames)"));

    ASSERT_TRUE(server->start());
    load("spk");
    ASSERT_TRUE(eventually([this] { return audio->getOutputDevices().size() == 1; }, 10000));
    QThread::msleep(2000);
    load("bt");
    // spk now declares 400 ms and bt 150 ms: bt waits 250 ms for spk.
    EXPECT_TRUE(eventually([this] { return holdsBack(0, 250); }, 5000)) << loopbacks().join('\n').toStdString();
}

TEST_P(LoopbackBackend, AnUnpluggedMemberTakesOnlyItsOwnLoopbackAlongAndGetsItBackOnItsReturn)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 150), hal::noErr);
    const QString btModule = server->moduleLoading("sink_name=bt ");
    ASSERT_FALSE(btModule.isEmpty());
    ASSERT_FALSE(server->pactl({"unload-module", btModule}).isNull());

    ASSERT_TRUE(eventually([this] { return audio->getOutputDevices().size() == 1; }));
    ASSERT_TRUE(eventually([this] { return loopbacks().size() == 1; }));
    EXPECT_EQ(loopbacks(), QStringList{loopback("spk", 180)});
    EXPECT_EQ(server->defaultSink(), "com.quellon.stacked");

    printed.lines.clear();
    audio->setRuntimeLatency("bt", 20); // no longer a member: nothing to do, nothing printed
    audio->setVolume("bt", 0.5f);
    EXPECT_TRUE(printed.lines.empty());
    load("bt");
    ASSERT_TRUE(eventually([this] { return loopbacks().size() == 2; }));
    EXPECT_TRUE(holdsBack(150, 0));
    audio->destroyOldStackedDevices();
    EXPECT_TRUE(loopbacks().isEmpty());
}

TEST_P(LoopbackBackend, QuittingDuringAHandOverLeavesOneLoopbackPerMember)
{
    ASSERT_EQ(audio->createStackedDevice("spk", "bt", 0, 0), hal::noErr);
    audio->setRuntimeLatency("bt", 300);
    ASSERT_EQ(loopbacks().size(), 3); // the old spk loopback still plays
    audio.reset();
    backend.hardware.reset();
    // The stacked device stays in the server, as it was last set.
    EXPECT_EQ(loopbacks(), (QStringList{loopback("bt", 30), loopback("spk", 330)}));
}

TEST_P(LoopbackBackend, ADraggedSliderNeverPilesUpLoopbacks)
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
    const int spkLatency = 30 + delay;
    EXPECT_EQ(loopbacks(), (QStringList{loopback("bt", 30), loopback("spk", spkLatency)}));
}

INSTANTIATE_TEST_SUITE_P(Servers, PulseBackend, ::testing::Values(Kind::PulseAudio, Kind::PipeWire),
                         [](const auto& param) { return std::string(SoundServer::name(param.param)); });
INSTANTIATE_TEST_SUITE_P(Servers, LoopbackBackend, ::testing::Values(Kind::PulseAudio),
                         [](const auto& param) { return std::string(SoundServer::name(param.param)); });

} // namespace
} // namespace orvanta::testing

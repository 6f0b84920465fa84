// Measures what the user hears: the offset between the two members of a stacked device, and
// that a live change of a delay never leaves a member silent.

#include "support/OffsetMeter.h"

#include "PipeWireAudioHardware.h"
#include "PulseAudioHardware.h"
#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>
#include <QProcess>
#include <QThread>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <optional>

namespace orvanta::testing {
namespace {

using Kind = SoundServer::Kind;

struct Case
{
    Kind server;
    int primaryMs;
    int secondaryMs;
};

// A private server with the meter rig and the audio layer over it.
class MeterRig
{
protected:
    void startRig(Kind kind)
    {
        server = std::make_unique<SoundServer>(kind);
        ASSERT_TRUE(server->start());
        ASSERT_TRUE(loadMeterRig(*server));
        auto connection = std::make_unique<pulse::PulseConnection>();
        ASSERT_TRUE(connection->waitUntilReady(std::chrono::seconds(5)));
        if (kind == Kind::PipeWire) {
            auto session = pipewire::PipeWireLoop::connect();
            ASSERT_TRUE(session);
            hardware = std::make_unique<pipewire::PipeWireAudioHardware>(std::move(connection), std::move(session));
        } else {
            hardware = std::make_unique<pulse::PulseAudioHardware>(std::move(connection));
        }
        audio = std::make_unique<audio::AudioWrapper>(*hardware, printed.log());
    }

    std::unique_ptr<SoundServer> server;
    core::CollectedLines printed;
    std::unique_ptr<hal::AudioHardware> hardware;
    std::unique_ptr<audio::AudioWrapper> audio;
};

class OffsetMeter : public ::testing::TestWithParam<Case>, protected MeterRig
{
protected:
    void SetUp() override { startRig(GetParam().server); }
};

class LiveChange : public ::testing::TestWithParam<Kind>, protected MeterRig
{
protected:
    void SetUp() override { startRig(GetParam()); }
};

TEST_P(OffsetMeter, MembersAreOffsetByTheirDeclaredDelaysInTheRightDirection)
{
    const auto [kind, primaryMs, secondaryMs] = GetParam();
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", primaryMs, secondaryMs), hal::noErr);
    const auto offset = measureOffsetMs(*server);
    ASSERT_TRUE(offset.has_value()) << "no click recorded";
    // A member that declares more latency makes the other one wait: the primary plays
    // (secondary - primary) ms after the secondary.
    const double expected = secondaryMs - primaryMs;
    RecordProperty("measured_ms", std::to_string(*offset));
    EXPECT_NEAR(*offset, expected, 1.0) << SoundServer::name(kind) << " measured " << *offset << " ms";
}

TEST_P(LiveChange, MovesTheOffset)
{
    const Kind kind = GetParam();
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 0), hal::noErr);
    audio->setRuntimeLatency("mB", 150);
    // The replaced loopback hands over at once; a new loopback on PipeWire may take up to about
    // two seconds to settle on its latency, which is what this measures once it has.
    QThread::msleep(2500);
    const auto offset = measureOffsetMs(*server);
    ASSERT_TRUE(offset.has_value());
    EXPECT_NEAR(*offset, 150.0, 1.0) << SoundServer::name(kind);
}

TEST_P(LiveChange, LeavesNoGap)
{
    const Kind kind = GetParam();
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 0), hal::noErr);
    const auto silence = longestSilenceMs(*server, [this] { audio->setRuntimeLatency("mB", 600); });
    ASSERT_TRUE(silence.has_value());
    RecordProperty("longest_silence_ms", std::to_string(*silence));
    // A change that unloaded the old loopback first would leave a gap as long as the new latency.
    EXPECT_LT(*silence, 10.0) << SoundServer::name(kind);
}

std::string caseName(const ::testing::TestParamInfo<Case>& param)
{
    return std::string(SoundServer::name(param.param.server)) + "_" + std::to_string(param.param.primaryMs) + "_" +
           std::to_string(param.param.secondaryMs);
}

INSTANTIATE_TEST_SUITE_P(Delays, OffsetMeter,
                         ::testing::Values(Case{Kind::PulseAudio, 0, 0}, Case{Kind::PulseAudio, 0, 150},
                                           Case{Kind::PulseAudio, 0, 600}, Case{Kind::PulseAudio, 150, 0},
                                           Case{Kind::PulseAudio, 600, 0}, Case{Kind::PipeWire, 0, 0},
                                           Case{Kind::PipeWire, 0, 150}, Case{Kind::PipeWire, 0, 600},
                                           Case{Kind::PipeWire, 150, 0}, Case{Kind::PipeWire, 600, 0}),
                         caseName);

INSTANTIATE_TEST_SUITE_P(Servers, LiveChange, ::testing::Values(Kind::PulseAudio, Kind::PipeWire),
                         [](const auto& param) { return std::string(SoundServer::name(param.param)); });

} // namespace
} // namespace orvanta::testing

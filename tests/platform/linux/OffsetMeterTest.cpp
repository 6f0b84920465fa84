// Measures what the user hears from the loopback design on PulseAudio: the offset between the
// two members of a stacked device, and that a live change of a delay never leaves a member
// silent. (The node hosted on PipeWire has its own, stricter measurements.)

#include "support/OffsetMeter.h"

#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"
#include "pulse/PulseAudioHardware.h"

#include <gtest/gtest.h>

#include <QThread>

#include <cmath>

namespace orvanta::testing {
namespace {

struct Delays
{
    int primaryMs;
    int secondaryMs;
};

// A private PulseAudio with the meter rig and the audio layer over it.
class LoopbackLiveChange : public ::testing::Test
{
protected:
    void SetUp() override
    {
        server = std::make_unique<SoundServer>(SoundServer::Kind::PulseAudio);
        ASSERT_TRUE(server->start());
        ASSERT_TRUE(loadMeterRig(*server));
        auto connection = std::make_unique<pulse::PulseConnection>();
        ASSERT_TRUE(connection->waitUntilReady(std::chrono::seconds(5)));
        hardware = std::make_unique<pulse::PulseAudioHardware>(std::move(connection));
        audio = std::make_unique<audio::AudioWrapper>(*hardware, printed.log());
    }

    // PulseAudio's loopback reaches its latency by adapting its rate, and on a loaded machine its
    // first seconds can be a millisecond or two off: a reading outside the tolerance is taken
    // again, up to three times. A wrong delay stays wrong on every reading.
    std::optional<double> settledOffsetMs(double expectedMs)
    {
        std::optional<double> offset;
        for (int reading = 0; reading < 3; ++reading) {
            offset = measureOffsetMs(*server);
            if (offset && std::abs(*offset - expectedMs) <= kToleranceMs) {
                break;
            }
        }
        return offset;
    }

    static constexpr double kToleranceMs = 1.0;
    std::unique_ptr<SoundServer> server;
    core::CollectedLines printed;
    std::unique_ptr<pulse::PulseAudioHardware> hardware;
    std::unique_ptr<audio::AudioWrapper> audio;
};

class LoopbackOffset : public LoopbackLiveChange, public ::testing::WithParamInterface<Delays>
{};

TEST_P(LoopbackOffset, MembersAreOffsetByTheirDeclaredDelaysInTheRightDirection)
{
    const auto [primaryMs, secondaryMs] = GetParam();
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", primaryMs, secondaryMs), hal::noErr);
    const auto offset = settledOffsetMs(secondaryMs - primaryMs);
    ASSERT_TRUE(offset.has_value()) << "no click recorded";
    // A member that declares more latency makes the other one wait: the primary plays
    // (secondary - primary) ms after the secondary.
    RecordProperty("measured_ms", std::to_string(*offset));
    EXPECT_NEAR(*offset, secondaryMs - primaryMs, kToleranceMs);
}

TEST_F(LoopbackLiveChange, MovesTheOffset)
{
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 0), hal::noErr);
    audio->setRuntimeLatency("mB", 150);
    // The replaced loopback hands over once its successor has filled its latency.
    QThread::msleep(500);
    const auto offset = settledOffsetMs(150.0);
    ASSERT_TRUE(offset.has_value());
    EXPECT_NEAR(*offset, 150.0, kToleranceMs);
}

TEST_F(LoopbackLiveChange, LeavesNoGap)
{
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 0), hal::noErr);
    const auto silence = longestSilenceMs(*server, [this] { audio->setRuntimeLatency("mB", 600); });
    ASSERT_TRUE(silence.has_value());
    RecordProperty("longest_silence_ms", std::to_string(*silence));
    // A change that unloaded the old loopback first would leave a gap as long as the new latency.
    EXPECT_LT(*silence, 10.0);
}

INSTANTIATE_TEST_SUITE_P(Delays, LoopbackOffset,
                         ::testing::Values(Delays{0, 0}, Delays{0, 150}, Delays{0, 600}, Delays{150, 0},
                                           Delays{600, 0}),
                         [](const auto& param) {
                             return std::to_string(param.param.primaryMs) + "_" +
                                    std::to_string(param.param.secondaryMs);
                         });

} // namespace
} // namespace orvanta::testing

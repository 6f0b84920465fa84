// Measures what the user hears: the offset between the two members of a stacked device.
//
// Both members are remaps of one 4-channel null sink ("hw"): the primary plays on its front
// pair, the secondary on its rear pair. A click played into the stacked device is recorded from
// hw's monitor in one stream, so the two copies of the click are timed by the same clock, to
// the frame.

#include "support/SoundServer.h"

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

constexpr int kRate = 48000;
constexpr int kClickAmplitude = 24000;
constexpr int kThreshold = 8000;

struct Case
{
    Kind server;
    int primaryMs;
    int secondaryMs;
};

// Two channels of 16-bit silence with one short click after lead-in.
QByteArray clickTrack()
{
    const int leadIn = kRate * 3 / 10;
    const int total = kRate * 2;
    std::vector<std::int16_t> samples(static_cast<std::size_t>(total) * 2, 0);
    for (int i = 0; i < 48; ++i) {
        const auto value = static_cast<std::int16_t>(i % 2 == 0 ? kClickAmplitude : -kClickAmplitude);
        samples[static_cast<std::size_t>(leadIn + i) * 2] = value;
        samples[static_cast<std::size_t>(leadIn + i) * 2 + 1] = value;
    }
    return QByteArray(reinterpret_cast<const char*>(samples.data()),
                      static_cast<qsizetype>(samples.size() * sizeof(std::int16_t)));
}

// The first frame whose sample on this channel of a 4-channel recording passes the threshold.
std::optional<long> firstClick(const QByteArray& recording, int channel)
{
    const auto frames = recording.size() / static_cast<qsizetype>(4 * sizeof(std::int16_t));
    for (qsizetype frame = 0; frame < frames; ++frame) {
        std::int16_t sample = 0;
        std::memcpy(&sample, recording.constData() + (frame * 4 + channel) * 2, sizeof sample);
        if (std::abs(sample) > kThreshold) {
            return static_cast<long>(frame);
        }
    }
    return std::nullopt;
}

class OffsetMeter : public ::testing::TestWithParam<Case>
{
protected:
    void SetUp() override
    {
        server = std::make_unique<SoundServer>(GetParam().server);
        ASSERT_TRUE(server->start());
        ASSERT_GE(server->loadModule("module-null-sink", {"sink_name=hw", "channels=4", "rate=48000",
                                                          "channel_map=front-left,front-right,rear-left,rear-right"}),
                  0);
        for (const auto& [name, pair] : {std::pair{"mA", "front-left,front-right"}, {"mB", "rear-left,rear-right"}}) {
            ASSERT_GE(server->loadModule("module-remap-sink", {QString("sink_name=") + name, "master=hw", "channels=2",
                                                               QString("master_channel_map=") + pair,
                                                               "channel_map=front-left,front-right", "remix=no"}),
                      0);
        }
        auto connection = std::make_unique<pulse::PulseConnection>();
        ASSERT_TRUE(connection->waitUntilReady(std::chrono::seconds(5)));
        hardware = std::make_unique<pulse::PulseAudioHardware>(std::move(connection));
        audio = std::make_unique<audio::AudioWrapper>(*hardware, printed.log());
    }

    // The primary's click time minus the secondary's, in ms.
    std::optional<double> measure()
    {
        QProcess recorder;
        recorder.setProcessEnvironment(environment());
        recorder.start("parec", {"-d", "hw.monitor", "--raw", "--format=s16le", "--rate=48000", "--channels=4",
                                 "--channel-map=front-left,front-right,rear-left,rear-right", "--latency-msec=20"});
        if (!recorder.waitForStarted(5000)) {
            return std::nullopt;
        }
        QThread::msleep(300);
        QProcess player;
        player.setProcessEnvironment(environment());
        player.start("pacat", {"-d", "com.quellon.stacked", "--raw", "--format=s16le", "--rate=48000", "--channels=2",
                               "--channel-map=front-left,front-right"});
        if (!player.waitForStarted(5000)) {
            return std::nullopt;
        }
        player.write(clickTrack());
        player.closeWriteChannel();
        player.waitForFinished(10000);
        // The later copy of the click comes at most the longest loopback latency after the first.
        QByteArray recording;
        QElapsedTimer clock;
        clock.start();
        while (clock.elapsed() < 1200) {
            recorder.waitForReadyRead(100);
            recording += recorder.readAllStandardOutput();
        }
        recorder.kill();
        recorder.waitForFinished(3000);
        recording += recorder.readAllStandardOutput();
        const auto primary = firstClick(recording, 0);
        const auto secondary = firstClick(recording, 2);
        if (!primary || !secondary) {
            return std::nullopt;
        }
        return static_cast<double>(*primary - *secondary) * 1000.0 / kRate;
    }

    QProcessEnvironment environment() const
    {
        auto env = QProcessEnvironment::systemEnvironment();
        env.insert("PULSE_SERVER", server->serverAddress());
        return env;
    }

    std::unique_ptr<SoundServer> server;
    core::CollectedLines printed;
    std::unique_ptr<pulse::PulseAudioHardware> hardware;
    std::unique_ptr<audio::AudioWrapper> audio;
};

TEST_P(OffsetMeter, MembersAreOffsetByTheirDeclaredDelaysInTheRightDirection)
{
    const auto [kind, primaryMs, secondaryMs] = GetParam();
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", primaryMs, secondaryMs), hal::noErr);
    const auto offset = measure();
    ASSERT_TRUE(offset.has_value()) << "no click recorded";
    // A member that declares more latency makes the other one wait: the primary plays
    // (secondary - primary) ms after the secondary.
    const double expected = secondaryMs - primaryMs;
    RecordProperty("measured_ms", std::to_string(*offset));
    EXPECT_NEAR(*offset, expected, 1.0) << SoundServer::name(kind) << " measured " << *offset << " ms";
}

TEST_P(OffsetMeter, ALiveChangeMovesTheOffset)
{
    const auto [kind, primaryMs, secondaryMs] = GetParam();
    if (primaryMs != 0 || secondaryMs != 150) {
        GTEST_SKIP() << "measured once per server";
    }
    ASSERT_EQ(audio->createStackedDevice("mA", "mB", 0, 0), hal::noErr);
    audio->setRuntimeLatency("mB", 150);
    QThread::msleep(400); // the replaced loopback hands over
    const auto offset = measure();
    ASSERT_TRUE(offset.has_value());
    EXPECT_NEAR(*offset, 150.0, 1.0) << SoundServer::name(kind);
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

} // namespace
} // namespace orvanta::testing

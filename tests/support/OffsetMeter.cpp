#include "OffsetMeter.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryFile>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <vector>

namespace orvanta::testing {

namespace {

constexpr int kRate = 48000;
constexpr int kClickAmplitude = 24000;
constexpr int kClickThreshold = 8000;
constexpr int kToneAmplitude = 16000;
constexpr int kSilenceThreshold = 300;
const QStringList kFourChannels{"--channel-map=front-left,front-right,rear-left,rear-right"};

QByteArray pcm(const std::vector<std::int16_t>& samples)
{
    return QByteArray(reinterpret_cast<const char*>(samples.data()),
                      static_cast<qsizetype>(samples.size() * sizeof(std::int16_t)));
}

// Two channels: silence, then one short click.
QByteArray clickTrack()
{
    const int leadIn = kRate * 3 / 10;
    std::vector<std::int16_t> samples(static_cast<std::size_t>(kRate) * 2 * 2, 0);
    for (int i = 0; i < 48; ++i) {
        const auto value = static_cast<std::int16_t>(i % 2 == 0 ? kClickAmplitude : -kClickAmplitude);
        samples[static_cast<std::size_t>(leadIn + i) * 2] = value;
        samples[static_cast<std::size_t>(leadIn + i) * 2 + 1] = value;
    }
    return pcm(samples);
}

// Two channels of a 440 Hz tone.
QByteArray toneTrack(double seconds)
{
    const auto frames = static_cast<std::size_t>(seconds * kRate);
    std::vector<std::int16_t> samples(frames * 2);
    for (std::size_t i = 0; i < frames; ++i) {
        const double phase = 2.0 * std::numbers::pi * 440.0 * static_cast<double>(i) / kRate;
        samples[i * 2] = samples[i * 2 + 1] = static_cast<std::int16_t>(kToneAmplitude * std::sin(phase));
    }
    return pcm(samples);
}

std::int16_t sampleAt(const QByteArray& recording, qsizetype frame, int channel)
{
    std::int16_t sample = 0;
    std::memcpy(&sample, recording.constData() + (frame * 4 + channel) * 2, sizeof sample);
    return sample;
}

qsizetype frameCount(const QByteArray& recording)
{
    return recording.size() / static_cast<qsizetype>(4 * sizeof(std::int16_t));
}

std::optional<qsizetype> firstLoud(const QByteArray& recording, int channel, int threshold)
{
    for (qsizetype frame = 0; frame < frameCount(recording); ++frame) {
        if (std::abs(sampleAt(recording, frame, channel)) > threshold) {
            return frame;
        }
    }
    return std::nullopt;
}

// The longest quiet stretch on a channel, in frames, from settleFrames after its first loud
// sample to its last. The settling time keeps the start of playback, when a loopback is still
// filling, out of the measurement.
qsizetype longestQuiet(const QByteArray& recording, int channel, qsizetype settleFrames)
{
    qsizetype first = -1;
    qsizetype last = -1;
    for (qsizetype frame = 0; frame < frameCount(recording); ++frame) {
        if (std::abs(sampleAt(recording, frame, channel)) > kSilenceThreshold) {
            first = first < 0 ? frame : first;
            last = frame;
        }
    }
    qsizetype longest = 0;
    qsizetype run = 0;
    for (qsizetype frame = first + settleFrames; first >= 0 && frame <= last; ++frame) {
        run = std::abs(sampleAt(recording, frame, channel)) > kSilenceThreshold ? 0 : run + 1;
        longest = std::max(longest, run);
    }
    return longest;
}

QProcessEnvironment environmentFor(const SoundServer& server)
{
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("PULSE_SERVER", server.serverAddress());
    return env;
}

// Records hw's monitor while track plays into the stacked device; changeAfterMs after the
// track starts, change runs. Records for tailMs after the track has been written.
std::optional<QByteArray> record(const SoundServer& server, const QByteArray& track, int tailMs,
                                 const std::function<void()>& change = {}, int changeAfterMs = 0)
{
    QProcess recorder;
    recorder.setProcessEnvironment(environmentFor(server));
    recorder.start("parec", QStringList{"-d", "hw.monitor", "--raw", "--format=s16le", "--rate=48000", "--channels=4",
                                        "--latency-msec=20"} +
                                kFourChannels);
    if (!recorder.waitForStarted(5000)) {
        return std::nullopt;
    }
    QThread::msleep(300);
    QTemporaryFile file;
    if (!file.open() || file.write(track) != track.size() || !file.flush()) {
        return std::nullopt;
    }
    QProcess player;
    player.setProcessEnvironment(environmentFor(server));
    player.start("pacat", {"-d", "com.quellon.stacked", "--raw", "--format=s16le", "--rate=48000", "--channels=2",
                           "--channel-map=front-left,front-right", file.fileName()});
    if (!player.waitForStarted(5000)) {
        return std::nullopt;
    }
    if (change) {
        QThread::msleep(static_cast<unsigned long>(changeAfterMs));
        change();
    }
    player.waitForFinished(15000);
    QByteArray recording;
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < tailMs) {
        recorder.waitForReadyRead(50);
        recording += recorder.readAllStandardOutput();
    }
    recorder.kill();
    recorder.waitForFinished(3000);
    return recording + recorder.readAllStandardOutput();
}

} // namespace

bool loadMeterRig(const SoundServer& server)
{
    const bool hw =
        server.loadModule("module-null-sink", {"sink_name=hw", "channels=4", "rate=48000",
                                               "channel_map=front-left,front-right,rear-left,rear-right"}) >= 0;
    const bool a = server.loadModule("module-remap-sink", {"sink_name=mA", "master=hw", "channels=2",
                                                           "master_channel_map=front-left,front-right",
                                                           "channel_map=front-left,front-right", "remix=no"}) >= 0;
    const bool b = server.loadModule("module-remap-sink", {"sink_name=mB", "master=hw", "channels=2",
                                                           "master_channel_map=rear-left,rear-right",
                                                           "channel_map=front-left,front-right", "remix=no"}) >= 0;
    return hw && a && b;
}

std::optional<double> measureOffsetMs(const SoundServer& server)
{
    // The later copy of the click comes at most the longest loopback latency after the first.
    const auto recording = record(server, clickTrack(), 1200);
    if (!recording) {
        return std::nullopt;
    }
    const auto primary = firstLoud(*recording, 0, kClickThreshold);
    const auto secondary = firstLoud(*recording, 2, kClickThreshold);
    if (!primary || !secondary) {
        return std::nullopt;
    }
    return static_cast<double>(*primary - *secondary) * 1000.0 / kRate;
}

std::optional<double> longestSilenceMs(const SoundServer& server, const std::function<void()>& change)
{
    const auto recording = record(server, toneTrack(2.5), 1200, change, 500);
    if (!recording || !firstLoud(*recording, 0, kSilenceThreshold) || !firstLoud(*recording, 2, kSilenceThreshold)) {
        return std::nullopt;
    }
    constexpr qsizetype kSettleFrames = kRate / 5;
    const auto longest =
        std::max(longestQuiet(*recording, 0, kSettleFrames), longestQuiet(*recording, 2, kSettleFrames));
    return static_cast<double>(longest) * 1000.0 / kRate;
}

} // namespace orvanta::testing

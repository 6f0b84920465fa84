#include "LevelMeter.h"

#include <QElapsedTimer>
#include <QProcess>
#include <QTemporaryFile>
#include <QThread>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <numbers>
#include <vector>

namespace orvanta::testing {
namespace {

constexpr int kRate = 48000;
constexpr double kToneSeconds = 1.6;
constexpr int kToneAmplitude = 12000;
constexpr int kHeardThreshold = 50;
// The level is read over this stretch, after the members have settled.
constexpr qsizetype kSettleFrames = kRate * 3 / 10;
constexpr qsizetype kWindowFrames = kRate / 2;

QByteArray tone()
{
    const auto frames = static_cast<std::size_t>(kToneSeconds * kRate);
    std::vector<std::int16_t> samples(frames * 2);
    for (std::size_t i = 0; i < frames; ++i) {
        const double phase = 2.0 * std::numbers::pi * 440.0 * static_cast<double>(i) / kRate;
        samples[i * 2] = samples[i * 2 + 1] = static_cast<std::int16_t>(kToneAmplitude * std::sin(phase));
    }
    return QByteArray(reinterpret_cast<const char*>(samples.data()),
                      static_cast<qsizetype>(samples.size() * sizeof(std::int16_t)));
}

double sampleAt(const QByteArray& recording, qsizetype frame, int channel)
{
    std::int16_t sample = 0;
    std::memcpy(&sample, recording.constData() + (frame * 4 + channel) * 2, sizeof sample);
    return sample;
}

// The RMS of a channel over the window that starts kSettleFrames after it is first heard.
std::optional<double> rms(const QByteArray& recording, int channel)
{
    const qsizetype frames = recording.size() / 8;
    qsizetype first = 0;
    while (first < frames && std::abs(sampleAt(recording, first, channel)) <= kHeardThreshold) {
        ++first;
    }
    const qsizetype start = first + kSettleFrames;
    if (start + kWindowFrames > frames) {
        return std::nullopt;
    }
    double sum = 0.0;
    for (qsizetype frame = start; frame < start + kWindowFrames; ++frame) {
        const double sample = sampleAt(recording, frame, channel);
        sum += sample * sample;
    }
    return std::sqrt(sum / static_cast<double>(kWindowFrames));
}

} // namespace

std::optional<MemberLevels> measureMemberLevels(const SoundServer& server)
{
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("PULSE_SERVER", server.serverAddress());
    QProcess recorder;
    recorder.setProcessEnvironment(environment);
    recorder.start("parec", {"-d", "hw.monitor", "--raw", "--format=s16le", "--rate=48000", "--channels=4",
                             "--latency-msec=20", "--channel-map=front-left,front-right,rear-left,rear-right"});
    QTemporaryFile file;
    const QByteArray track = tone();
    if (!recorder.waitForStarted(5000) || !file.open() || file.write(track) != track.size() || !file.flush()) {
        return std::nullopt;
    }
    QThread::msleep(200);
    QProcess player;
    player.setProcessEnvironment(environment);
    player.start("pacat", {"-d", "com.quellon.stacked", "--raw", "--format=s16le", "--rate=48000", "--channels=2",
                           "--channel-map=front-left,front-right", file.fileName()});
    if (!player.waitForStarted(5000)) {
        return std::nullopt;
    }
    QByteArray recording;
    QElapsedTimer clock;
    clock.start();
    // The tone, the longest member delay of the rig and some slack.
    while (clock.elapsed() < static_cast<qint64>(kToneSeconds * 1000) + 1200) {
        recorder.waitForReadyRead(50);
        recording += recorder.readAllStandardOutput();
    }
    player.waitForFinished(5000);
    recorder.kill();
    recorder.waitForFinished(3000);
    const auto primary = rms(recording, 0);
    const auto secondary = rms(recording, 2);
    if (!primary || !secondary) {
        return std::nullopt;
    }
    return MemberLevels{*primary, *secondary};
}

} // namespace orvanta::testing

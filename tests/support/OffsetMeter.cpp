#include "OffsetMeter.h"

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <numbers>

namespace orvanta::testing {
namespace {

constexpr float kClickAmplitude = 0.7f;
constexpr float kClickThreshold = 0.25f;
constexpr float kToneAmplitude = 0.5f;
constexpr qint64 kSettleFrames = kMeterRate / 5;
constexpr long kPlayerStartFrames = kMeterRate / 5;
constexpr float kQuietLevel = 0.01f;
const QString kSixChannels = "--channel-map=front-left,front-right,rear-left,rear-right,front-center,lfe";

// A stream that happens to start on the default sink would otherwise follow the default when
// Orvanta changes it, and record or play somewhere else from then on.
const QString kStayOnTarget = "--property=node.dont-reconnect=true";

QProcessEnvironment environmentFor(const SoundServer& server)
{
    auto env = QProcessEnvironment::systemEnvironment();
    env.insert("PULSE_SERVER", server.serverAddress());
    return env;
}

long frameCount(const Samples& recording)
{
    return static_cast<long>(recording.size() / kMeterChannels);
}

float sampleAt(const Samples& recording, long frame, int channel)
{
    return recording[static_cast<std::size_t>(frame * kMeterChannels + channel)];
}

// The first and last frame on a channel louder than near-silence.
std::optional<std::pair<long, long>> soundingSpan(const Samples& recording, int channel)
{
    long first = -1;
    long last = -1;
    for (long frame = 0; frame < frameCount(recording); ++frame) {
        if (std::abs(sampleAt(recording, frame, channel)) > kQuietLevel) {
            first = first < 0 ? frame : first;
            last = frame;
        }
    }
    if (first < 0) {
        return std::nullopt;
    }
    return std::make_pair(first, last);
}

bool cleanTone(const ToneCheck& tone)
{
    return tone.longestGapMs < 1.0 && tone.largestStep <= tone.toneStep * 1.05 && tone.finiteWithinScale;
}

} // namespace

bool loadMeterRig(const SoundServer& server)
{
    const bool hw = server.loadModule("module-null-sink", {"sink_name=hw", "channels=6", "rate=48000",
                                                           "channel_map=front-left,front-right,rear-left,rear-right,"
                                                           "front-center,lfe"}) >= 0;
    bool pairs = true;
    for (const auto& [name, pair] : {std::pair{"mA", "front-left,front-right"}, std::pair{"mB", "rear-left,rear-right"},
                                     std::pair{"ref", "front-center,lfe"}}) {
        pairs =
            pairs && server.loadModule("module-remap-sink", {QString("sink_name=") + name, "master=hw", "channels=2",
                                                             QString("master_channel_map=") + pair,
                                                             "channel_map=front-left,front-right", "remix=no"}) >= 0;
    }
    return hw && pairs;
}

Samples clickTrack(double seconds, const std::vector<double>& clickTimes)
{
    Samples samples(static_cast<std::size_t>(seconds * kMeterRate) * 2, 0.0f);
    for (const double time : clickTimes) {
        const auto start = static_cast<std::size_t>(time * kMeterRate);
        for (std::size_t i = 0; i < 48 && (start + i) * 2 + 1 < samples.size(); ++i) {
            const float value = i % 2 == 0 ? kClickAmplitude : -kClickAmplitude;
            samples[(start + i) * 2] = samples[(start + i) * 2 + 1] = value;
        }
    }
    return samples;
}

Samples toneTrack(double seconds)
{
    const auto frames = static_cast<std::size_t>(seconds * kMeterRate);
    const std::size_t ramp = kMeterRate / 100;
    Samples samples(frames * 2);
    for (std::size_t i = 0; i < frames; ++i) {
        const double edge = static_cast<double>(std::min({i, frames - 1 - i, ramp})) / static_cast<double>(ramp);
        const double gain = 0.5 - 0.5 * std::cos(std::numbers::pi * edge);
        const double phase = 2.0 * std::numbers::pi * 440.0 * static_cast<double>(i) / kMeterRate;
        samples[i * 2] = samples[i * 2 + 1] =
            static_cast<float>(static_cast<double>(kToneAmplitude) * gain * std::sin(phase));
    }
    return samples;
}

Recorder::Recorder(const SoundServer& server, const QString& source, int channels) : channelCount(channels)
{
    // Straight into a file: a pipe that nobody reads while the test waits would stall it.
    if (!file.open()) {
        return;
    }
    process.setProcessEnvironment(environmentFor(server));
    process.setStandardOutputFile(file.fileName());
    QStringList arguments{"-d",
                          source,
                          "--raw",
                          "--format=float32le",
                          "--rate=48000",
                          "--channels=" + QString::number(channels),
                          "--latency-msec=20",
                          kStayOnTarget};
    if (channels == kMeterChannels) {
        arguments.append(kSixChannels);
    }
    process.start("parec", arguments);
    running = process.waitForStarted(5000);
    // The stream starts before the first sound it has to catch.
    QThread::msleep(kSettleFrames * 1000 / kMeterRate + 100);
}

Samples Recorder::stop(int tailMs)
{
    if (!running) {
        return {};
    }
    QThread::msleep(static_cast<unsigned long>(tailMs));
    process.terminate();
    if (!process.waitForFinished(3000)) {
        process.kill();
        process.waitForFinished(3000);
    }
    // A new stream may begin with what the sink played just before it: drop its first moments,
    // which the wait at the start keeps clear of anything a test plays.
    const qint64 frameBytes = static_cast<qint64>(sizeof(float)) * channelCount;
    const QByteArray bytes = file.readAll().mid(kSettleFrames * frameBytes);
    const auto whole = static_cast<std::size_t>(bytes.size() / frameBytes) * static_cast<std::size_t>(channelCount);
    Samples samples(whole);
    std::memcpy(samples.data(), bytes.constData(), whole * sizeof(float));
    return samples;
}

Player::Player(const SoundServer& server, const Samples& track, const QString& sink)
{
    const auto size = static_cast<qint64>(track.size() * sizeof(float));
    if (!file.open() || file.write(reinterpret_cast<const char*>(track.data()), size) != size || !file.flush()) {
        return;
    }
    process.setProcessEnvironment(environmentFor(server));
    process.start("pacat", {"-d", sink, "--raw", "--format=float32le", "--rate=48000", "--channels=2",
                            "--channel-map=front-left,front-right", kStayOnTarget, file.fileName()});
    running = process.waitForStarted(5000);
}

bool Player::waitUntilDone()
{
    return running && process.waitForFinished(30000) && process.exitCode() == 0;
}

std::vector<long> clickOnsets(const Samples& recording, int channel, int channels, long quietFrames)
{
    std::vector<long> onsets;
    long quiet = quietFrames;
    const auto frames = static_cast<long>(recording.size()) / channels;
    for (long frame = 0; frame < frames; ++frame) {
        if (std::abs(recording[static_cast<std::size_t>(frame * channels + channel)]) <= kClickThreshold) {
            ++quiet;
            continue;
        }
        if (quiet >= quietFrames) {
            onsets.push_back(frame);
        }
        quiet = 0;
    }
    return onsets;
}

std::optional<ToneCheck> checkTone(const Samples& recording, int channel)
{
    const auto span = soundingSpan(recording, channel);
    if (!span || span->second - span->first < kMeterRate / 2) {
        return std::nullopt;
    }
    ToneCheck check;
    long run = 0;
    for (long frame = 0; frame < frameCount(recording); ++frame) {
        const float sample = sampleAt(recording, frame, channel);
        check.finiteWithinScale = check.finiteWithinScale && std::isfinite(sample) && std::abs(sample) <= 1.0f;
        // A player's own start-up may stumble for a cycle, on every member alike: judged from
        // kPlayerStartFrames after the first sound.
        if (frame < span->first + kPlayerStartFrames || frame > span->second) {
            continue;
        }
        run = std::abs(sample) > kQuietLevel ? 0 : run + 1;
        check.longestGapMs = std::max(check.longestGapMs, static_cast<double>(run) * 1000.0 / kMeterRate);
        if (frame > span->first + kPlayerStartFrames) {
            const double step = std::abs(static_cast<double>(sample - sampleAt(recording, frame - 1, channel)));
            check.largestStep = std::max(check.largestStep, step);
            // The first 200 ms judged: past the player's start, before any change.
            if (frame < span->first + kPlayerStartFrames + kMeterRate / 5) {
                check.toneStep = std::max(check.toneStep, step);
            }
        }
    }
    return check;
}

std::optional<double> measureOffsetMs(const SoundServer& server)
{
    Recorder recorder(server);
    Player player(server, clickTrack(1.0, {0.3}));
    if (!recorder.started() || !player.waitUntilDone()) {
        return std::nullopt;
    }
    // The later copy of the click comes at most the longest hold-back after the first.
    const auto recording = recorder.stop(1000);
    const auto a = clickOnsets(recording, kMemberA);
    const auto b = clickOnsets(recording, kMemberB);
    if (a.size() != 1 || b.size() != 1) {
        return std::nullopt;
    }
    return static_cast<double>(a.front() - b.front()) * 1000.0 / kMeterRate;
}

std::optional<ToneCheck> changedMemberTone(const SoundServer& server, double seconds,
                                           const std::function<void()>& changes)
{
    for (int run = 0; run < 3; ++run) {
        Recorder recorder(server);
        Player player(server, toneTrack(seconds));
        if (!recorder.started() || !player.started()) {
            return std::nullopt;
        }
        changes();
        player.waitUntilDone();
        const auto recording = recorder.stop(1000);
        const auto control = checkTone(recording, kMemberB);
        if (control && cleanTone(*control)) {
            return checkTone(recording, kMemberA);
        }
    }
    return std::nullopt;
}

std::optional<double> longestSilenceMs(const SoundServer& server, const std::function<void()>& change)
{
    const auto tone = changedMemberTone(server, 2.5, [&] {
        QThread::msleep(1000);
        change();
    });
    if (!tone) {
        return std::nullopt;
    }
    return tone->longestGapMs;
}

} // namespace orvanta::testing

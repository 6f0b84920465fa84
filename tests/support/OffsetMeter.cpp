#include "OffsetMeter.h"

#include <QElapsedTimer>
#include <QThread>

#include <pulse/simple.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstring>
#include <memory>
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

constexpr double kToneSeconds = 1.6;
// The level is read over this stretch, after the members have settled.
constexpr long kLevelSettleFrames = kMeterRate * 3 / 10;
constexpr long kWindowFrames = kMeterRate / 2;
constexpr float kHeard = 0.002f;

// The RMS of a channel over the window that starts kLevelSettleFrames after it is first heard.
std::optional<double> rms(const Samples& recording, int channel)
{
    const long frames = static_cast<long>(recording.size() / kMeterChannels);
    const auto at = [&](long frame) {
        return static_cast<double>(recording[static_cast<std::size_t>(frame * kMeterChannels + channel)]);
    };
    long first = 0;
    while (first < frames && std::abs(at(first)) <= static_cast<double>(kHeard)) {
        ++first;
    }
    const long start = first + kLevelSettleFrames;
    if (start + kWindowFrames > frames) {
        return std::nullopt;
    }
    double sum = 0.0;
    for (long frame = start; frame < start + kWindowFrames; ++frame) {
        sum += at(frame) * at(frame);
    }
    return std::sqrt(sum / static_cast<double>(kWindowFrames));
}

constexpr std::size_t kChunkFrames = kMeterRate / 100;

struct SimpleDeleter
{
    void operator()(pa_simple* stream) const { pa_simple_free(stream); }
};
using Stream = std::unique_ptr<pa_simple, SimpleDeleter>;

Stream openStream(const SoundServer& server, const char* sink)
{
    const pa_sample_spec spec{PA_SAMPLE_FLOAT32LE, kMeterRate, 2};
    pa_buffer_attr attributes{};
    attributes.maxlength = static_cast<std::uint32_t>(-1);
    attributes.tlength = static_cast<std::uint32_t>(kMeterRate / 20 * 2 * sizeof(float)); // 50 ms
    attributes.prebuf = static_cast<std::uint32_t>(-1);
    attributes.minreq = static_cast<std::uint32_t>(-1);
    attributes.fragsize = static_cast<std::uint32_t>(-1);
    int error = 0;
    return Stream(pa_simple_new(server.serverAddress().toUtf8().constData(), "latency probe", PA_STREAM_PLAYBACK, sink,
                                "probe", &spec, nullptr, &attributes, &error));
}

bool write(pa_simple* stream, const Samples& chunk)
{
    int error = 0;
    return pa_simple_write(stream, chunk.data(), chunk.size() * sizeof(float), &error) == 0;
}

std::optional<double> toldLatencyMs(pa_simple* stream)
{
    int error = 0;
    const pa_usec_t latency = pa_simple_get_latency(stream, &error);
    if (latency == static_cast<pa_usec_t>(-1)) {
        return std::nullopt;
    }
    return static_cast<double>(latency) / 1000.0;
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

std::optional<MemberLevels> measureMemberLevels(const SoundServer& server)
{
    Recorder recorder(server);
    Player player(server, toneTrack(kToneSeconds));
    if (!recorder.started() || !player.waitUntilDone()) {
        return std::nullopt;
    }
    // The longest member delay of the rig and some slack.
    const auto recording = recorder.stop(1200);
    const auto primary = rms(recording, kMemberA);
    const auto secondary = rms(recording, kMemberB);
    if (!primary || !secondary) {
        return std::nullopt;
    }
    return MemberLevels{*primary, *secondary};
}

std::optional<LatencyProbe> probeLatency(const SoundServer& server)
{
    Recorder recorder(server);
    Stream stacked = openStream(server, "com.quellon.stacked");
    Stream reference = openStream(server, "ref");
    if (!recorder.started() || !stacked || !reference) {
        return std::nullopt;
    }
    const Samples silence(kChunkFrames * 2, 0.0f);
    Samples click = clickTrack(static_cast<double>(kChunkFrames) / kMeterRate, {0.0});
    // A second of silence first, so both streams play steadily before the click.
    for (int i = 0; i < 100; ++i) {
        if (!write(stacked.get(), silence) || !write(reference.get(), silence)) {
            return std::nullopt;
        }
    }
    LatencyProbe probe;
    using Clock = std::chrono::steady_clock;
    const auto stackedTold = toldLatencyMs(stacked.get());
    const auto stackedWrite = Clock::now();
    const bool stackedWritten = write(stacked.get(), click);
    const auto referenceTold = toldLatencyMs(reference.get());
    const auto referenceWrite = Clock::now();
    const bool referenceWritten = write(reference.get(), click);
    for (int i = 0; i < 100; ++i) {
        write(stacked.get(), silence);
        write(reference.get(), silence);
    }
    int error = 0;
    pa_simple_drain(stacked.get(), &error);
    pa_simple_drain(reference.get(), &error);
    const auto recording = recorder.stop(1000);
    if (!stackedTold || !referenceTold || !stackedWritten || !referenceWritten) {
        return std::nullopt;
    }
    probe.toldStackedMs = *stackedTold;
    probe.toldReferenceMs = *referenceTold;
    probe.writeGapMs = std::chrono::duration<double, std::milli>(referenceWrite - stackedWrite).count();
    const auto a = clickOnsets(recording, kMemberA);
    const auto b = clickOnsets(recording, kMemberB);
    const auto ref = clickOnsets(recording, kReference);
    if (a.size() != 1 || b.size() != 1 || ref.size() != 1) {
        return std::nullopt;
    }
    probe.stackedClick = std::max(a.front(), b.front());
    probe.referenceClick = ref.front();
    return probe;
}

} // namespace orvanta::testing

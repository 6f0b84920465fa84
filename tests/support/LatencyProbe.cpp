#include "LatencyProbe.h"

#include "OffsetMeter.h"

#include <pulse/simple.h>

#include <algorithm>
#include <chrono>
#include <memory>

namespace orvanta::testing {

namespace {

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

} // namespace

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

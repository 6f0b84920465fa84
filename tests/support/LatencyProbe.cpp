#include "LatencyProbe.h"

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

// A 50 ms target buffer, as a player that cares about latency asks for.
Stream openStream(const SoundServer& server, const char* sink)
{
    const pa_sample_spec spec{PA_SAMPLE_FLOAT32LE, kMeterRate, 2};
    const auto unset = static_cast<std::uint32_t>(-1);
    const pa_buffer_attr attributes{unset, static_cast<std::uint32_t>(kMeterRate / 20 * 2 * sizeof(float)), unset,
                                    unset, unset};
    int error = 0;
    return Stream(pa_simple_new(server.serverAddress().toUtf8().constData(), "latency probe", PA_STREAM_PLAYBACK, sink,
                                "probe", &spec, nullptr, &attributes, &error));
}

bool write(pa_simple* stream, const Samples& chunk)
{
    int error = 0;
    return pa_simple_write(stream, chunk.data(), chunk.size() * sizeof(float), &error) == 0;
}

bool writeBoth(pa_simple* first, pa_simple* second, const Samples& chunk, int times)
{
    bool written = true;
    for (int i = 0; i < times; ++i) {
        written = write(first, chunk) && write(second, chunk) && written;
    }
    return written;
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

double LatencyProbe::errorMs() const
{
    const double heard = static_cast<double>(stackedClick - referenceClick) * 1000.0 / kMeterRate;
    return toldStackedMs - toldReferenceMs - writeGapMs - heard;
}

std::optional<LatencyProbe> probeLatency(const SoundServer& server)
{
    Recorder recorder(server);
    Stream stacked = openStream(server, "com.quellon.stacked");
    Stream reference = openStream(server, "ref");
    const Samples silence(kChunkFrames * 2, 0.0f);
    // A second of silence first, so that both streams play steadily before the click.
    if (!recorder.started() || !stacked || !reference || !writeBoth(stacked.get(), reference.get(), silence, 100)) {
        return std::nullopt;
    }
    const Samples click = clickTrack(static_cast<double>(kChunkFrames) / kMeterRate, {0.0});
    using Clock = std::chrono::steady_clock;
    const auto stackedTold = toldLatencyMs(stacked.get());
    const auto stackedWrite = Clock::now();
    const bool stackedWritten = write(stacked.get(), click);
    const auto referenceTold = toldLatencyMs(reference.get());
    const auto referenceWrite = Clock::now();
    const bool referenceWritten = write(reference.get(), click);
    writeBoth(stacked.get(), reference.get(), silence, 100);
    int error = 0;
    pa_simple_drain(stacked.get(), &error);
    pa_simple_drain(reference.get(), &error);
    const auto recording = recorder.stop(1000);
    const auto a = clickOnsets(recording, kMemberA);
    const auto b = clickOnsets(recording, kMemberB);
    const auto ref = clickOnsets(recording, kReference);
    if (!stackedTold || !referenceTold || !stackedWritten || !referenceWritten || a.size() != 1 || b.size() != 1 ||
        ref.size() != 1) {
        return std::nullopt;
    }
    return LatencyProbe{*stackedTold, *referenceTold,
                        std::chrono::duration<double, std::milli>(referenceWrite - stackedWrite).count(),
                        std::max(a.front(), b.front()), ref.front()};
}

} // namespace orvanta::testing

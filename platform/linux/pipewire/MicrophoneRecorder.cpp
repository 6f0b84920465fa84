#include "MicrophoneRecorder.h"

#include "measure/TestSignal.h"

#include <pulse/error.h>

#include <algorithm>

namespace orvanta::pipewire {

namespace {

// Reads of 20 ms: a stop is noticed quickly, and the server is not asked too often.
constexpr std::size_t kReadFrames = measure::kRate / 50;
constexpr std::size_t kFragmentFrames = measure::kRate / 20;

} // namespace

std::unique_ptr<MicrophoneRecorder> MicrophoneRecorder::open(const std::string& source, std::string& error)
{
    pa_sample_spec spec{};
    spec.format = PA_SAMPLE_FLOAT32LE;
    spec.rate = measure::kRate;
    spec.channels = 1;
    pa_buffer_attr attributes{};
    attributes.maxlength = static_cast<std::uint32_t>(-1);
    // Fragments of 50 ms: long enough not to make the whole sound system run in shorter cycles.
    attributes.fragsize = static_cast<std::uint32_t>(kFragmentFrames * sizeof(float));
    int status = 0;
    pa_simple* stream = pa_simple_new(nullptr, "Orvanta", PA_STREAM_RECORD, source.c_str(), "Delay measurement", &spec,
                                      nullptr, &attributes, &status);
    if (!stream) {
        error = "pa_simple_new() failed: " + std::string(pa_strerror(status));
        return nullptr;
    }
    return std::unique_ptr<MicrophoneRecorder>(new MicrophoneRecorder(stream));
}

MicrophoneRecorder::~MicrophoneRecorder()
{
    pa_simple_free(stream);
}

bool MicrophoneRecorder::discardUntil(const std::atomic<bool>& until, const std::atomic<bool>& stop,
                                      std::size_t boundFrames)
{
    std::vector<float> chunk(kReadFrames);
    for (std::size_t passed = 0; passed < boundFrames; passed += kReadFrames) {
        if (until.load() || stop.load()) {
            return true;
        }
        int status = 0;
        if (pa_simple_read(stream, chunk.data(), chunk.size() * sizeof(float), &status) < 0) {
            return false;
        }
    }
    return until.load() || stop.load();
}

std::vector<float> MicrophoneRecorder::record(std::size_t frames, const std::atomic<bool>& stop,
                                              const std::function<void(std::size_t)>& recorded, bool& ok)
{
    std::vector<float> samples(frames, 0.0f);
    std::size_t done = 0;
    ok = true;
    while (done < frames && !stop.load()) {
        const std::size_t chunk = std::min(kReadFrames, frames - done);
        int status = 0;
        if (pa_simple_read(stream, samples.data() + done, chunk * sizeof(float), &status) < 0) {
            ok = false;
            break;
        }
        done += chunk;
        recorded(done);
    }
    ok = ok && done == frames;
    samples.resize(done);
    return samples;
}

} // namespace orvanta::pipewire

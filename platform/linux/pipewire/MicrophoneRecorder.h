#pragma once

// One microphone recorded through the sound server, mono at the measurement's rate, on the
// thread that calls it (never the main thread: reads wait for the sound to come in).

#include <pulse/simple.h>

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace orvanta::pipewire {

class MicrophoneRecorder
{
public:
    // Opens the source by its sound-server name; null, with the server's reason, on failure.
    static std::unique_ptr<MicrophoneRecorder> open(const std::string& source, std::string& error);
    ~MicrophoneRecorder();
    MicrophoneRecorder(const MicrophoneRecorder&) = delete;
    MicrophoneRecorder& operator=(const MicrophoneRecorder&) = delete;

    // Reads and drops what comes in until `until` or `stop` becomes true, or `boundFrames` have
    // passed; false when the server fails or the bound passes first.
    bool discardUntil(const std::atomic<bool>& until, const std::atomic<bool>& stop, std::size_t boundFrames);
    // Records `frames` frames, telling `recorded` the count after every read. Gives what it got
    // so far when `stop` becomes true or the server fails; ok says whether it got them all.
    std::vector<float> record(std::size_t frames, const std::atomic<bool>& stop,
                              const std::function<void(std::size_t)>& recorded, bool& ok);

private:
    explicit MicrophoneRecorder(pa_simple* opened) : stream(opened) {}
    pa_simple* stream;
};

} // namespace orvanta::pipewire

#pragma once

// The delay measurement on a PipeWire system (see services/DelayMeasurement.h). The hosted
// stacked device plays each member's sweep from its own clock (ProbeCue.h) while a worker
// thread records the microphone and then finds the sweeps in the recording
// (measure/MeasurementAnalysis.h). The main thread only hands the script over and takes the
// outcome back; the worker never touches the stacked device.

#include "PipeWireAudioHardware.h"
#include "ProbeCue.h"
#include "services/DelayMeasurement.h"

#include <memory>

namespace orvanta::pipewire {

class MicrophoneMeasurement final : public services::DelayMeasurement
{
public:
    explicit MicrophoneMeasurement(PipeWireAudioHardware& hardware);
    ~MicrophoneMeasurement() override;
    MicrophoneMeasurement(const MicrophoneMeasurement&) = delete;
    MicrophoneMeasurement& operator=(const MicrophoneMeasurement&) = delete;

    bool canMeasure() const override;
    std::vector<services::Microphone> microphones() const override;
    std::vector<std::string> speakerUIDs() const override;
    void start(const std::string& microphone, Progress progress, Done done) override;
    void cancel() override;
    bool running() const override { return current != nullptr; }

private:
    struct Run;

    void giveUpAfterBound(const std::shared_ptr<Run>& run);
    void play(Run& run);
    void finish(const std::shared_ptr<Run>& run, measure::MeasurementOutcome outcome);
    void stopPlaying(Run& run);

    PipeWireAudioHardware& hardware;
    std::shared_ptr<Run> current;
};

} // namespace orvanta::pipewire

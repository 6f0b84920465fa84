#pragma once

// Measuring the speakers' relative lateness with a microphone, where the sound system allows
// it. The stacked device plays each speaker's test sound in turn while the chosen microphone
// records; the recording is made and analysed off the main thread, and what a caller hands in
// is called back on the main thread. All calls come from the main thread.

#include "measure/MeasurementOutcome.h"

#include <functional>
#include <string>
#include <vector>

namespace orvanta::services {

struct Microphone
{
    std::string name;        // the sound server's name for it
    std::string description; // what the user sees
};

class DelayMeasurement
{
public:
    // How far along a running measurement is, from 0 to 1.
    using Progress = std::function<void(double)>;
    using Done = std::function<void(const measure::MeasurementOutcome&)>;

    virtual ~DelayMeasurement() = default;

    // Whether there is a stacked device of two speakers to measure right now.
    virtual bool canMeasure() const = 0;
    // The sound system's microphones, the default one first.
    virtual std::vector<Microphone> microphones() const = 0;
    // The UIDs of the two speakers in the order of the outcome's latenessMs.
    virtual std::vector<std::string> speakerUIDs() const = 0;

    // Starts a measurement; done is called exactly once, with Cancelled after cancel(). A call
    // while one runs does nothing.
    virtual void start(const std::string& microphone, Progress progress, Done done) = 0;
    virtual void cancel() = 0;
    virtual bool running() const = 0;
};

} // namespace orvanta::services

#pragma once

// The microphone measurement that goes with the chosen sound system: on PipeWire, where
// Orvanta hosts the stacked device and can time each speaker's sound; none elsewhere (the
// simulated system, PulseAudio), where the main window offers no measurement.

#include "hal/AudioHardware.h"
#include "services/DelayMeasurement.h"

#include <memory>

namespace orvanta::app {

std::unique_ptr<services::DelayMeasurement> delayMeasurementFor(hal::AudioHardware& hardware);

} // namespace orvanta::app

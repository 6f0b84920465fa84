#pragma once

// From a microphone's recording of one measurement (MeasurementPlan.h) to the speakers'
// relative lateness. Each speaker's sweep is found by cross-correlation, so the recording may
// start at any time before the first sound: the microphone's own latency is the same for both
// speakers and drops out of their difference.

#include "MeasurementOutcome.h"

#include <span>

namespace orvanta::measure {

// Mono samples at kRate.
MeasurementOutcome analyseRecording(std::span<const float> recording);

} // namespace orvanta::measure

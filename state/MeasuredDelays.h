#pragma once

// What a microphone measurement means for the two speakers' delays: the speaker heard later
// gets the difference (within 0 to 600 ms), the other one 0. Applied through AppState like any
// other change of a delay, so it is stored, shown and, while sync is on, applied at once.

#include "measure/MeasurementOutcome.h"
#include "state/AppState.h"

#include <map>
#include <string>
#include <vector>

namespace orvanta::state {

struct MeasuredDelays
{
    std::map<std::string, int> byUID; // speaker UID -> delay in ms
    double differenceMs = 0.0;        // how much later the later speaker is heard
    bool beyondRange = false;         // the difference is more than the longest delay
};

// uids: the speakers in the order of the outcome's latenessMs.
MeasuredDelays measuredDelays(const std::vector<std::string>& uids, const measure::MeasurementOutcome& outcome);

// Sets both selected speakers' delays. A later speaker that is not treated as Bluetooth is
// marked to be, since only such a speaker's delay is applied.
void applyMeasuredDelays(AppState& appState, const MeasuredDelays& delays);

} // namespace orvanta::state

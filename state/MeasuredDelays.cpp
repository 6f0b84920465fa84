#include "MeasuredDelays.h"

#include <algorithm>
#include <cmath>

namespace orvanta::state {

MeasuredDelays measuredDelays(const std::vector<std::string>& uids, const measure::MeasurementOutcome& outcome)
{
    MeasuredDelays delays;
    for (std::size_t member = 0; member < uids.size() && member < outcome.latenessMs.size(); ++member) {
        const double lateness = outcome.latenessMs[member];
        delays.differenceMs = std::max(delays.differenceMs, lateness);
        delays.byUID[uids[member]] =
            std::clamp(static_cast<int>(std::lround(lateness)), AppState::kMinDelayMs, AppState::kMaxDelayMs);
    }
    delays.beyondRange = delays.differenceMs > AppState::kMaxDelayMs + 0.5;
    return delays;
}

void applyMeasuredDelays(AppState& appState, const MeasuredDelays& delays)
{
    for (const auto& device : {appState.selectedDevice1(), appState.selectedDevice2()}) {
        if (!device) {
            continue;
        }
        const auto entry = delays.byUID.find(device->uid);
        if (entry == delays.byUID.end()) {
            continue;
        }
        appState.setBluetoothDelay(entry->second, device);
        const auto mark = appState.manualBluetoothOverrides().find(device->uid);
        const bool treated = device->isBluetooth || (mark != appState.manualBluetoothOverrides().end() && mark->second);
        if (entry->second > 0 && !treated) {
            appState.setManualBluetoothOverride(true, device);
        }
    }
}

} // namespace orvanta::state

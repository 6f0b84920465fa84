// Per-device delays and "treat as Bluetooth" marks: the effective delay rule, storage, and live
// application while sync is on.

#include "AppState.h"
#include "PersistedMaps.h"
#include "audio/AudioWrapper.h"
#include "services/UserDefaults.h"

#include <algorithm>

namespace orvanta::state {

void AppState::loadPersistedMaps()
{
    if (auto loaded = delaysFromStored(services.userDefaults.value(kBluetoothDelaysKey))) {
        setDelays(std::move(*loaded));
    }
    if (auto loaded = overridesFromStored(services.userDefaults.value(kManualBTKey))) {
        setOverrides(std::move(*loaded));
    }
}

int AppState::delayEntry(const std::string& uid) const
{
    const auto it = delays.find(uid);
    return it == delays.end() ? 0 : it->second;
}

bool AppState::overrideEntry(const std::string& uid) const
{
    const auto it = overrides.find(uid);
    return it != overrides.end() && it->second;
}

int AppState::effectiveDelay(const OptionalDevice& device) const
{
    if (!device || (!device->isBluetooth && !overrideEntry(device->uid))) {
        return 0;
    }
    return delayEntry(device->uid);
}

void AppState::setBluetoothDelay(int ms, const OptionalDevice& device)
{
    if (!device) {
        return;
    }
    const int clamped = std::min(std::max(ms, 0), kMaxDelayMs);
    auto updated = delays;
    updated[device->uid] = clamped;
    setDelays(std::move(updated));
    services.userDefaults.setValue(kBluetoothDelaysKey, toStored(delays));
    if (syncOn) {
        const bool countsAsBluetooth = device->isBluetooth || overrideEntry(device->uid);
        services.audio.setRuntimeLatency(device->uid, countsAsBluetooth ? clamped : 0);
    }
}

void AppState::setManualBluetoothOverride(bool isOn, const OptionalDevice& device)
{
    if (!device) {
        return;
    }
    auto updated = overrides;
    updated[device->uid] = isOn;
    setOverrides(std::move(updated));
    services.userDefaults.setValue(kManualBTKey, toStored(overrides));
    if (syncOn) {
        services.audio.setRuntimeLatency(device->uid, isOn ? delayEntry(device->uid) : 0);
    }
}

} // namespace orvanta::state

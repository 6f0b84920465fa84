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

bool AppState::isMarkedBluetooth(const OptionalDevice& device) const
{
    if (!device) {
        return false;
    }
    const auto it = overrides.find(device->uid);
    return it != overrides.end() && it->second;
}

bool AppState::countsAsBluetooth(const OptionalDevice& device) const
{
    return device && (device->isBluetooth || isMarkedBluetooth(device));
}

int AppState::storedDelay(const OptionalDevice& device) const
{
    if (!device) {
        return 0;
    }
    const auto it = delays.find(device->uid);
    return it == delays.end() ? 0 : it->second;
}

int AppState::effectiveDelay(const OptionalDevice& device) const
{
    return countsAsBluetooth(device) ? storedDelay(device) : 0;
}

void AppState::setBluetoothDelay(int ms, const OptionalDevice& device)
{
    if (!device) {
        return;
    }
    const int clamped = std::clamp(ms, kMinDelayMs, kMaxDelayMs);
    auto updated = delays;
    updated[device->uid] = clamped;
    setDelays(std::move(updated));
    services.userDefaults.setValue(kBluetoothDelaysKey, toStored(delays));
    if (syncOn) {
        services.audio.setRuntimeLatency(device->uid, effectiveDelay(device));
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
        services.audio.setRuntimeLatency(device->uid, isOn ? storedDelay(device) : 0);
    }
}

} // namespace orvanta::state

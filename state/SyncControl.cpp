// Turning sync on and off, and pushing the two volumes to their devices.

#include "AppState.h"
#include "MediaKeyManager.h"
#include "audio/AudioWrapper.h"

#include <algorithm>

namespace orvanta::state {

bool AppState::canEnableSync() const
{
    return primary && secondary && primary->uid != secondary->uid;
}

void AppState::enableSync()
{
    restorePending = false;
    if (!primary || !secondary) {
        return;
    }
    const int primaryDelay = effectiveDelay(primary);
    const int secondaryDelay = effectiveDelay(secondary);
    const auto status = services.audio.createStackedDevice(primary->uid, secondary->uid, primaryDelay, secondaryDelay);
    if (status != 0) {
        setQuellonOn(false);
        return;
    }
    setQuellonOn(true);
    rememberSyncDevices();
    applyVolumes();
    services.mediaKeys.start();
}

void AppState::disableSync()
{
    restorePending = false;
    services.audio.destroyOldStackedDevices();
    if (primary) {
        services.audio.returnAudio(primary->uid);
    }
    setQuellonOn(false);
}

void AppState::applyVolumes()
{
    if (!primary || !secondary) {
        return;
    }
    services.audio.setVolume(primary->uid, primaryVolume);
    services.audio.setVolume(secondary->uid, secondaryVolume);
}

void AppState::adjustMasterVolume(float delta)
{
    setVolume1(std::max(0.0f, std::min(1.0f, primaryVolume + delta)));
    setVolume2(std::max(0.0f, std::min(1.0f, secondaryVolume + delta)));
    applyVolumes();
}

} // namespace orvanta::state

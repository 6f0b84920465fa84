#include "AppState.h"

#include "MediaKeyManager.h"
#include "audio/AudioWrapper.h"
#include "services/AccessibilityTrust.h"
#include "services/LoginItems.h"
#include "services/UserDefaults.h"

#include <QPointer>

namespace orvanta::state {

AppState::AppState(AppStateServices appServices, QObject* parent) : QObject(parent), services(std::move(appServices))
{
    // The login item's status is the starting value, not a choice: nothing is registered here.
    startsAtLogin = services.loginItems.status() == services::LoginItems::Status::Enabled;
    // Settings are written by others too (the language), so the outcome comes from the store.
    // The store may outlive this object, so the observer checks that it is still there.
    services.userDefaults.setSaveObserver([self = QPointer<AppState>(this)](bool saved) {
        if (self) {
            self->setSettingsSaved(saved);
        }
    });
    loadPersistedMaps();
    restoresSync = services.userDefaults.value(QString::fromLatin1(kRestoreSyncKey)).toBool();
    restorePending = restoresSync;
    setDevices(services.audio.getOutputDevices());
    setTrusted(services.trust.isProcessTrusted());
    startPermissionTimer();
    connect(&services.mediaKeys, &MediaKeyManager::masterVolumeStep, this, &AppState::adjustMasterVolume);
}

AppState::~AppState() = default;

void AppState::setDevices(DeviceList value)
{
    assign(deviceList, std::move(value), &AppState::devicesChanged);
    restoreSyncIfPending();
}

void AppState::setSelectedDevice1(OptionalDevice value)
{
    restorePending = false;
    assign(primary, std::move(value), &AppState::selectedDevice1Changed);
}

void AppState::setSelectedDevice2(OptionalDevice value)
{
    restorePending = false;
    assign(secondary, std::move(value), &AppState::selectedDevice2Changed);
}

void AppState::setQuellonOn(bool value)
{
    assign(syncOn, value, &AppState::isQuellonOnChanged);
}

void AppState::setVolume1(float value)
{
    assign(primaryVolume, value, &AppState::volume1Changed);
}

void AppState::setVolume2(float value)
{
    assign(secondaryVolume, value, &AppState::volume2Changed);
}

void AppState::setDelays(DelayMap value)
{
    assign(delays, std::move(value), &AppState::bluetoothDelaysChanged);
}

void AppState::setOverrides(OverrideMap value)
{
    assign(overrides, std::move(value), &AppState::manualBluetoothOverridesChanged);
}

void AppState::setTrusted(bool value)
{
    assign(trusted, value, &AppState::isTrustedChanged);
}

void AppState::setSettingsSaved(bool value)
{
    assign(lastSettingsWriteSaved, value, &AppState::settingsSavedChanged);
}

void AppState::setLaunchAtLogin(bool value)
{
    assign(startsAtLogin, value, &AppState::launchAtLoginChanged);
    updateLaunchAtLogin();
}

} // namespace orvanta::state

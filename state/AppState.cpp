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
    deviceList = std::move(value);
    emit devicesChanged();
    restoreSyncIfPending();
}

void AppState::setSelectedDevice1(OptionalDevice value)
{
    primary = std::move(value);
    restorePending = false;
    emit selectedDevice1Changed();
}

void AppState::setSelectedDevice2(OptionalDevice value)
{
    secondary = std::move(value);
    restorePending = false;
    emit selectedDevice2Changed();
}

void AppState::setQuellonOn(bool value)
{
    syncOn = value;
    emit isQuellonOnChanged();
}

void AppState::setVolume1(float value)
{
    primaryVolume = value;
    emit volume1Changed();
}

void AppState::setVolume2(float value)
{
    secondaryVolume = value;
    emit volume2Changed();
}

void AppState::setDelays(DelayMap value)
{
    delays = std::move(value);
    emit bluetoothDelaysChanged();
}

void AppState::setOverrides(OverrideMap value)
{
    overrides = std::move(value);
    emit manualBluetoothOverridesChanged();
}

void AppState::setTrusted(bool value)
{
    trusted = value;
    emit isTrustedChanged();
}

void AppState::setSettingsSaved(bool value)
{
    lastSettingsWriteSaved = value;
    emit settingsSavedChanged();
}

void AppState::setLaunchAtLogin(bool value)
{
    startsAtLogin = value;
    emit launchAtLoginChanged();
    updateLaunchAtLogin();
}

} // namespace orvanta::state

#pragma once

// The program's one observable state: the device list, the two selected devices, whether sync
// is on, both volumes, the per-device delays and Bluetooth marks, accessibility trust and
// launch at login, whether sync comes back at start, and whether changed settings reach
// storage. Views bind to its properties and change things only through it. Every assignment to
// a property announces a change, also when the value is the same.

#include "audio/AudioDeviceOption.h"
#include "core/DiagnosticLog.h"

#include <QObject>
#include <QTimer>

#include <chrono>

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvanta::audio {
class AudioWrapper;
}
namespace orvanta::services {
class AccessibilityTrust;
class LoginItems;
class UserDefaults;
} // namespace orvanta::services

namespace orvanta::state {

class MediaKeyManager;

using DeviceList = std::vector<audio::AudioDeviceOption>;
using OptionalDevice = std::optional<audio::AudioDeviceOption>;
using DelayMap = std::map<std::string, int>;
using OverrideMap = std::map<std::string, bool>;

// What AppState works with: main() hands in the process's own, tests simulated ones.
struct AppStateServices
{
    audio::AudioWrapper& audio;
    services::UserDefaults& userDefaults;
    services::LoginItems& loginItems;
    services::AccessibilityTrust& trust;
    MediaKeyManager& mediaKeys;
    core::DiagnosticLog log;
};

class AppState : public QObject
{
    Q_OBJECT
    Q_PROPERTY(orvanta::state::DeviceList devices READ devices WRITE setDevices NOTIFY devicesChanged)
    Q_PROPERTY(orvanta::state::OptionalDevice selectedDevice1 READ selectedDevice1 WRITE setSelectedDevice1 NOTIFY
                   selectedDevice1Changed)
    Q_PROPERTY(orvanta::state::OptionalDevice selectedDevice2 READ selectedDevice2 WRITE setSelectedDevice2 NOTIFY
                   selectedDevice2Changed)
    Q_PROPERTY(bool isQuellonOn READ isQuellonOn NOTIFY isQuellonOnChanged)
    Q_PROPERTY(float volume1 READ volume1 WRITE setVolume1 NOTIFY volume1Changed)
    Q_PROPERTY(float volume2 READ volume2 WRITE setVolume2 NOTIFY volume2Changed)
    Q_PROPERTY(orvanta::state::DelayMap bluetoothDelays READ bluetoothDelays NOTIFY bluetoothDelaysChanged)
    Q_PROPERTY(orvanta::state::OverrideMap manualBluetoothOverrides READ manualBluetoothOverrides NOTIFY
                   manualBluetoothOverridesChanged)
    Q_PROPERTY(bool isTrusted READ isTrusted NOTIFY isTrustedChanged)
    Q_PROPERTY(bool launchAtLogin READ launchAtLogin WRITE setLaunchAtLogin NOTIFY launchAtLoginChanged)
    Q_PROPERTY(bool settingsSaved READ settingsSaved NOTIFY settingsSavedChanged)
    Q_PROPERTY(
        bool restoreSyncAtStart READ restoreSyncAtStart WRITE setRestoreSyncAtStart NOTIFY restoreSyncAtStartChanged)

public:
    static constexpr const char* kBluetoothDelaysKey = "bluetoothDelaysByUID";
    static constexpr const char* kManualBTKey = "manualBluetoothByUID";
    // Whether sync comes back at start, and the two devices it comes back with: a dictionary
    // with the UIDs under "primary" and "secondary".
    static constexpr const char* kRestoreSyncKey = "restoreSyncAtStart";
    static constexpr const char* kRestoreDevicesKey = "restoreSyncDevices";
    // A device's delay lies in kMinDelayMs..kMaxDelayMs; the views move it in steps of kDelayStepMs.
    static constexpr int kMinDelayMs = 0;
    static constexpr int kMaxDelayMs = 600;
    static constexpr int kDelayStepMs = 5;
    static constexpr std::chrono::milliseconds kPermissionPollInterval{1000};

    explicit AppState(AppStateServices services, QObject* parent = nullptr);
    ~AppState() override;

    // Sync.
    bool canEnableSync() const;
    void enableSync();
    void disableSync();

    // Volumes.
    void applyVolumes();
    void adjustMasterVolume(float delta);

    // Per-device delays and Bluetooth marks. A device counts as Bluetooth when it is present and
    // either reports itself as one or the user marked it as one; only then does its delay apply.
    bool countsAsBluetooth(const OptionalDevice& device) const;
    bool isMarkedBluetooth(const OptionalDevice& device) const;
    // The stored delay, 0 when there is none (or no device); the effective one is 0 unless the
    // device counts as Bluetooth.
    int storedDelay(const OptionalDevice& device) const;
    int effectiveDelay(const OptionalDevice& device) const;
    void setBluetoothDelay(int ms, const OptionalDevice& device);
    void setManualBluetoothOverride(bool isOn, const OptionalDevice& device);

    // Accessibility trust and launch at login.
    void startPermissionTimer();
    void updateLaunchAtLogin();

    const DeviceList& devices() const { return deviceList; }
    void setDevices(DeviceList value);
    const OptionalDevice& selectedDevice1() const { return primary; }
    void setSelectedDevice1(OptionalDevice value);
    const OptionalDevice& selectedDevice2() const { return secondary; }
    void setSelectedDevice2(OptionalDevice value);
    bool isQuellonOn() const { return syncOn; }
    float volume1() const { return primaryVolume; }
    void setVolume1(float value);
    float volume2() const { return secondaryVolume; }
    void setVolume2(float value);
    const DelayMap& bluetoothDelays() const { return delays; }
    const OverrideMap& manualBluetoothOverrides() const { return overrides; }
    bool isTrusted() const { return trusted; }
    bool launchAtLogin() const { return startsAtLogin; }
    void setLaunchAtLogin(bool value);
    // Whether the last write of the settings, by anyone, reached storage; true until one fails.
    bool settingsSaved() const { return lastSettingsWriteSaved; }

    // Restoring sync at start. While it is on, each sync that comes on remembers its two
    // devices; at start, and whenever the device list changes until the user chooses otherwise,
    // sync comes back on once both remembered devices are listed. Off, start-up selects nothing.
    bool restoreSyncAtStart() const { return restoresSync; }
    void setRestoreSyncAtStart(bool value);
    // The device pair that sync comes back with, if one is remembered.
    std::optional<std::pair<std::string, std::string>> rememberedSyncDevices() const;

signals:
    void devicesChanged();
    void selectedDevice1Changed();
    void selectedDevice2Changed();
    void isQuellonOnChanged();
    void volume1Changed();
    void volume2Changed();
    void bluetoothDelaysChanged();
    void manualBluetoothOverridesChanged();
    void isTrustedChanged();
    void launchAtLoginChanged();
    void settingsSavedChanged();
    void restoreSyncAtStartChanged();

private:
    void setQuellonOn(bool value);
    void setTrusted(bool value);
    void setSettingsSaved(bool value);
    void setDelays(DelayMap value);
    void setOverrides(OverrideMap value);
    void loadPersistedMaps();
    void rememberSyncDevices();
    void restoreSyncIfPending();
    // Stores a property's new value and tells its observers.
    template <typename T> void assign(T& field, T value, void (AppState::*changed)())
    {
        field = std::move(value);
        (this->*changed)(); // emits the signal
    }

    AppStateServices services;

    DeviceList deviceList;
    OptionalDevice primary;
    OptionalDevice secondary;
    bool syncOn = false;
    float primaryVolume = 0.5f;
    float secondaryVolume = 0.5f;
    DelayMap delays;
    OverrideMap overrides;
    bool trusted = false;
    bool startsAtLogin = false;
    bool lastSettingsWriteSaved = true;
    bool restoresSync = false;
    bool restorePending = false; // until sync came back or the user chose for themselves
    std::unique_ptr<QTimer> permissionTimer;
};

} // namespace orvanta::state

Q_DECLARE_METATYPE(orvanta::state::DeviceList)
Q_DECLARE_METATYPE(orvanta::state::OptionalDevice)
Q_DECLARE_METATYPE(orvanta::state::DelayMap)
Q_DECLARE_METATYPE(orvanta::state::OverrideMap)

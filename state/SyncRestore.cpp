// Bringing sync back at start with the two devices it last ran with.

#include "AppState.h"
#include "services/UserDefaults.h"

#include <QVariantMap>

#include <algorithm>

namespace orvanta::state {
namespace {

const QString kPrimaryField = QStringLiteral("primary");
const QString kSecondaryField = QStringLiteral("secondary");

} // namespace

void AppState::setRestoreSyncAtStart(bool value)
{
    restoresSync = value;
    services.userDefaults.setValue(QString::fromLatin1(kRestoreSyncKey), value);
    emit restoreSyncAtStartChanged();
    // Switched on while sync runs: the running pair is the one to come back.
    if (value && syncOn) {
        rememberSyncDevices();
    }
}

std::optional<std::pair<std::string, std::string>> AppState::rememberedSyncDevices() const
{
    const QVariantMap stored = services.userDefaults.value(QString::fromLatin1(kRestoreDevicesKey)).toMap();
    const QString first = stored.value(kPrimaryField).toString();
    const QString second = stored.value(kSecondaryField).toString();
    if (first.isEmpty() || second.isEmpty() || first == second) {
        return std::nullopt;
    }
    return std::make_pair(first.toStdString(), second.toStdString());
}

void AppState::rememberSyncDevices()
{
    if (!restoresSync || !primary || !secondary) {
        return;
    }
    const QVariantMap pair{{kPrimaryField, QString::fromStdString(primary->uid)},
                           {kSecondaryField, QString::fromStdString(secondary->uid)}};
    services.userDefaults.setValue(QString::fromLatin1(kRestoreDevicesKey), pair);
}

void AppState::restoreSyncIfPending()
{
    if (!restorePending) {
        return;
    }
    const auto remembered = rememberedSyncDevices();
    if (!remembered) {
        restorePending = false;
        return;
    }
    const auto listed = [this](const std::string& uid) -> OptionalDevice {
        const auto found = std::find_if(deviceList.begin(), deviceList.end(),
                                        [&uid](const audio::AudioDeviceOption& device) { return device.uid == uid; });
        return found == deviceList.end() ? OptionalDevice() : OptionalDevice(*found);
    };
    OptionalDevice first = listed(remembered->first);
    OptionalDevice second = listed(remembered->second);
    // A device not there yet (a Bluetooth speaker still connecting, a server still starting)
    // leaves the restore waiting for the next device list.
    if (!first || !second) {
        return;
    }
    setSelectedDevice1(std::move(first));
    setSelectedDevice2(std::move(second));
    enableSync();
}

} // namespace orvanta::state

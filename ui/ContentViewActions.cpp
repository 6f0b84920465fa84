// The main window's actions: reading the devices again, the sync switch with its warnings, the
// alerts shown one after the other, the permission watch, and the web pages.

#include "ContentView.h"

#include "PermissionBanner.h"
#include "audio/AudioWrapper.h"
#include "i18n/LanguageManager.h"
#include "services/Alerts.h"
#include "services/SoundSystemStatus.h"
#include "services/Workspace.h"
#include "state/AppState.h"
#include "state/MediaKeyManager.h"

#include <QTimer>
#include <QUrl>

namespace orvanta::ui {
namespace {

const QString kBluetoothPrefix = QStringLiteral("Bluetooth device detected: ");
const QString kBluetoothRemainder =
    QStringLiteral(". Bluetooth audio has inherent latency (100-200ms delay). For best sync, use wired connections or "
                   "check if your Bluetooth speaker supports direct wired connection to avoid audio delay.");
const QString kVolumePrefix = QStringLiteral("Volume control not supported: ");
const QString kVolumeRemainder = QStringLiteral(". Consider using apps like SoundSource for software volume control.");

QString joinedNames(const std::vector<std::string>& names)
{
    QStringList list;
    for (const auto& name : names) {
        list.append(QString::fromStdString(name));
    }
    return list.join(QStringLiteral(", "));
}

} // namespace

void ContentView::refreshDevices()
{
    appState.setDevices(services.audio.getOutputDevices());
}

void ContentView::syncOn()
{
    if (!appState.canEnableSync()) {
        errorMessage = lang.translate(QStringLiteral("Select two different devices"));
        showErrorAlert = true;
        scheduleAlerts();
        return;
    }
    appState.enableSync();

    const auto& primary = appState.selectedDevice1();
    const auto& secondary = appState.selectedDevice2();
    if (primary && secondary) {
        // Asked afresh of the audio layer: neither the catalogue's flag nor the user's mark.
        std::vector<std::string> bluetoothNames;
        for (const auto* device : {&*primary, &*secondary}) {
            if (services.audio.isBluetoothDevice(device->uid)) {
                bluetoothNames.push_back(device->name);
            }
        }
        if (!bluetoothNames.empty()) {
            bluetoothWarningMessage =
                lang.translate(kBluetoothPrefix + joinedNames(bluetoothNames) + kBluetoothRemainder);
            showBluetoothWarning = true;
        }

        std::vector<std::string> softwareOnly;
        for (const auto* device : {&*primary, &*secondary}) {
            if (!services.audio.supportsHardwareVolume(device->uid)) {
                softwareOnly.push_back(device->name);
            }
        }
        if (!softwareOnly.empty() && appState.isQuellonOn()) {
            volumeWarningMessage = lang.translate(kVolumePrefix + joinedNames(softwareOnly) + kVolumeRemainder);
            showVolumeWarning = true;
        }
    }
    scheduleAlerts();
}

void ContentView::syncOff()
{
    appState.disableSync();
}

void ContentView::trustChanged()
{
    // The poll announces the flag every second; only a change to true starts the key tap.
    const bool trusted = appState.isTrusted();
    if (trusted && !lastTrusted && appState.isQuellonOn()) {
        services.mediaKeys.start();
    }
    lastTrusted = trusted;
    if (banner->isHidden() != trusted) {
        banner->setVisible(!trusted);
    }
    if (!trusted) {
        banner->redraw();
    }
}

void ContentView::soundSystemChanged()
{
    // The server's devices arrive with the connection; the pickers list them at once.
    if (services.soundSystem != nullptr &&
        services.soundSystem->state() == platform::SoundSystemStatus::State::Connected) {
        refreshDevices();
    }
}

void ContentView::scheduleAlerts()
{
    if (hasPendingAlerts() && !presenting) {
        QTimer::singleShot(0, this, &ContentView::presentAlerts);
    }
}

void ContentView::presentAlerts()
{
    if (presenting) {
        return;
    }
    presenting = true;
    const QStringList ok{lang.translate(QStringLiteral("OK"))};
    // One at a time; each flag is cleared when its alert is dismissed.
    while (hasPendingAlerts()) {
        if (showErrorAlert) {
            services.alerts.runModal({lang.translate(QStringLiteral("Audio Sync Error")), errorMessage, ok});
            showErrorAlert = false;
        } else if (showVolumeWarning) {
            services.alerts.runModal(
                {lang.translate(QStringLiteral("Volume Control Warning")), volumeWarningMessage, ok});
            showVolumeWarning = false;
        } else if (showBluetoothWarning) {
            services.alerts.runModal(
                {lang.translate(QStringLiteral("Bluetooth Audio Latency")), bluetoothWarningMessage, ok});
            showBluetoothWarning = false;
        }
    }
    presenting = false;
}

void ContentView::openAddress(const QString& address)
{
    const QUrl url(address, QUrl::StrictMode);
    if (!url.isValid() || url.scheme().isEmpty()) {
        return;
    }
    services.workspace.openUrl(url);
}

} // namespace orvanta::ui

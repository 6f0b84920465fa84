#include "SyncWarnings.h"

#include "AppState.h"
#include "audio/AudioWrapper.h"

#include <QStringList>

namespace orvanta::state {
namespace {

const QString kBluetoothTitle = QStringLiteral("Bluetooth Audio Latency");
const QString kBluetoothPrefix = QStringLiteral("Bluetooth device detected: ");
const QString kBluetoothRemainder =
    QStringLiteral(". Bluetooth audio has inherent latency (100-200ms delay). For best sync, use wired connections or "
                   "check if your Bluetooth speaker supports direct wired connection to avoid audio delay.");
const QString kVolumeTitle = QStringLiteral("Volume Control Warning");
const QString kVolumePrefix = QStringLiteral("Volume control not supported: ");
const QString kVolumeRemainder = QStringLiteral(". Consider using apps like SoundSource for software volume control.");

} // namespace

std::vector<SyncWarning> SyncWarnings::afterEnableSync(const AppState& appState) const
{
    const auto& primary = appState.selectedDevice1();
    const auto& secondary = appState.selectedDevice2();
    if (!primary || !secondary) {
        return {};
    }
    QStringList bluetooth;
    QStringList softwareOnly;
    for (const auto* device : {&*primary, &*secondary}) {
        if (audioLayer.isBluetoothDevice(device->uid)) {
            bluetooth.append(QString::fromStdString(device->name));
        }
    }
    for (const auto* device : {&*primary, &*secondary}) {
        if (!audioLayer.supportsHardwareVolume(device->uid)) {
            softwareOnly.append(QString::fromStdString(device->name));
        }
    }
    std::vector<SyncWarning> warnings;
    if (!softwareOnly.empty() && appState.isQuellonOn()) {
        warnings.push_back({SyncWarning::Kind::Volume, kVolumeTitle,
                            kVolumePrefix + softwareOnly.join(QStringLiteral(", ")) + kVolumeRemainder});
    }
    if (!bluetooth.empty()) {
        warnings.push_back({SyncWarning::Kind::Bluetooth, kBluetoothTitle,
                            kBluetoothPrefix + bluetooth.join(QStringLiteral(", ")) + kBluetoothRemainder});
    }
    return warnings;
}

} // namespace orvanta::state

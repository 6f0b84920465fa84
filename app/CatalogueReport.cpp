#include "CatalogueReport.h"

#include "core/NumberFormat.h"

namespace orvanta::app {

std::string catalogueReport(audio::AudioWrapper& audio)
{
    const auto devices = audio.getOutputDevices();
    std::string report = "Output devices: " + std::to_string(devices.size()) + "\n";
    for (const auto& device : devices) {
        report += "  " + device.name + "\n";
        report += "    uid: " + device.uid + "\n";
        report += "    bluetooth: " + std::string(device.isBluetooth ? "yes" : "no") + "\n";
        report += "    sample rate: " + core::shortestFloat(audio.getNominalSampleRate(device.uid)) + " Hz\n";
        report += "    hardware volume: " + std::string(audio.supportsHardwareVolume(device.uid) ? "yes" : "no") + "\n";
    }
    return report;
}

} // namespace orvanta::app

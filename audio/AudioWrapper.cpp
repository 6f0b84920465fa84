#include "AudioWrapper.h"

namespace orvanta::audio {

using namespace orvanta::hal;

AudioWrapper::AudioWrapper(AudioHardware& hardware, core::DiagnosticLog diagnostics)
    : access(hardware), log(std::move(diagnostics))
{}

std::optional<AudioObjectID> AudioWrapper::findDevice(const std::string& uid)
{
    for (const auto id : getAllDeviceIDs()) {
        if (deviceUID(id) == uid) {
            return id;
        }
    }
    return std::nullopt;
}

std::string AudioWrapper::deviceUID(AudioObjectID deviceID)
{
    return access.readString(deviceID, kDeviceUID.address());
}

} // namespace orvanta::audio

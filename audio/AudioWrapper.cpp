#include "AudioWrapper.h"

#include <cstdio>
#include <cstdlib>
#include <memory>

namespace orvanta::audio {

using namespace orvanta::hal;

namespace {

struct SharedPlatform
{
    AudioHardware* hardware = nullptr;
    core::DiagnosticLog log;
};

SharedPlatform& sharedPlatform()
{
    static SharedPlatform platform;
    return platform;
}

} // namespace

AudioWrapper::AudioWrapper(AudioHardware& hardware, core::DiagnosticLog diagnostics)
    : access(hardware), log(std::move(diagnostics))
{
}

void AudioWrapper::usePlatform(AudioHardware& hardware, core::DiagnosticLog log)
{
    sharedPlatform() = {&hardware, std::move(log)};
}

AudioWrapper& AudioWrapper::shared()
{
    static const std::unique_ptr<AudioWrapper> instance = [] {
        auto& platform = sharedPlatform();
        if (!platform.hardware) {
            // A programming error: main() decides the platform before anything touches audio.
            std::fputs("AudioWrapper::shared() used before AudioWrapper::usePlatform()\n", stderr);
            std::abort();
        }
        return std::make_unique<AudioWrapper>(*platform.hardware, platform.log);
    }();
    return *instance;
}

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

// Per-device volume: three hardware controls tried in order, then a software level that is
// only recorded.

#include "AudioMessages.h"
#include "AudioWrapper.h"
#include "core/NumberFormat.h"

#include <algorithm>
#include <cmath>

namespace orvanta::audio {

using namespace orvanta::hal;

namespace {

constexpr AudioObjectPropertyElement kChannel1 = 1;
constexpr AudioObjectPropertyElement kChannel2 = 2;

float clampLevel(float level)
{
    // min(level, 1) first, so that NaN becomes 1.0 before the lower bound applies.
    const float upper = std::isnan(level) ? 1.0f : std::min(level, 1.0f);
    return std::max(upper, 0.0f);
}

} // namespace

void AudioWrapper::setVolume(const std::string& uid, float level)
{
    const float clamped = clampLevel(level);
    for (const auto id : getAllDeviceIDs()) {
        if (deviceUID(id) == uid) {
            setDeviceVolume(id, clamped);
        }
    }
}

bool AudioWrapper::writeVolume(AudioObjectID deviceID, AudioObjectPropertyElement element, float level)
{
    return access.writeFloat32(deviceID, kVolumeScalarOutput.address(element), level) == noErr;
}

void AudioWrapper::reportHardwareVolume(std::string_view viaPrefix, const std::string& uid, float level)
{
    hardwareVolumeMap[uid] = true;
    print(std::string(viaPrefix) + uid + ": " + core::shortestFloat(level));
}

void AudioWrapper::setDeviceVolume(AudioObjectID deviceID, float level)
{
    const std::string uid = deviceUID(deviceID);

    if (access.has(deviceID, kVirtualMainVolume.address()) &&
        access.writeFloat32(deviceID, kVirtualMainVolume.address(), level) == noErr) {
        reportHardwareVolume(messages::kVirtualMainVolumePrefix, uid, level);
        return;
    }
    if (access.has(deviceID, kVolumeScalarOutput.address(kChannel1))) {
        const bool first = writeVolume(deviceID, kChannel1, level);
        const bool second = writeVolume(deviceID, kChannel2, level);
        if (first || second) {
            reportHardwareVolume(messages::kVolumeScalarPrefix, uid, level);
            return;
        }
    }
    if (access.has(deviceID, kVolumeScalarOutput.address(kAudioObjectPropertyElementMain)) &&
        writeVolume(deviceID, kAudioObjectPropertyElementMain, level)) {
        reportHardwareVolume(messages::kMasterVolumePrefix, uid, level);
        return;
    }

    hardwareVolumeMap[uid] = false;
    softwareVolumeMap[uid] = level;
    print(std::string(messages::kNoHardwareVolumePrefix) + uid + std::string(messages::kNoHardwareVolumeMiddle) +
          core::shortestFloat(level));
    storeSoftwareVolume(uid, level);
}

void AudioWrapper::storeSoftwareVolume(const std::string& uid, float level)
{
    softwareVolumeMap[uid] = level;
    print(std::string(messages::kSoftwareVolumeStoredPrefix) + uid + ": " + core::shortestFloat(level));
    print(std::string(messages::kSoftwareVolumeNote));
}

bool AudioWrapper::supportsHardwareVolume(const std::string& uid)
{
    if (const auto known = hardwareVolumeMap.find(uid); known != hardwareVolumeMap.end()) {
        return known->second;
    }
    const auto id = findDevice(uid);
    if (!id) {
        return false;
    }
    const bool supported = access.has(*id, kVirtualMainVolume.address());
    hardwareVolumeMap[uid] = supported;
    return supported;
}

} // namespace orvanta::audio

// The stacked output device: creation with per-member latencies, teardown, the default output
// and live latency changes.

#include "AudioMessages.h"
#include "AudioWrapper.h"
#include "core/NumberFormat.h"

#include <cmath>
#include <limits>

namespace orvanta::audio {

using namespace orvanta::hal;

UInt32 AudioWrapper::delayToFrames(const std::string& uid, int ms)
{
    if (ms < 1) {
        return 0;
    }
    const double frames = std::round(getNominalSampleRate(uid) * static_cast<double>(ms) / 1000.0);
    // Delays are kept within 0 to 600 ms, far below the limit. A count that would not fit in
    // 32 bits (an absurd delay, or a device reporting an absurd rate) saturates at the largest
    // latency the platform can express rather than wrapping to a small one.
    constexpr double kMaxFrames = static_cast<double>(std::numeric_limits<UInt32>::max());
    if (!(frames <= kMaxFrames)) {
        return std::numeric_limits<UInt32>::max();
    }
    return frames > 0 ? static_cast<UInt32>(frames) : 0;
}

PropertyList AudioWrapper::composition(const std::string& primaryUID, const std::string& secondaryUID,
                                       UInt32 primaryFrames, UInt32 secondaryFrames) const
{
    const auto member = [](const std::string& uid, std::int64_t drift, UInt32 frames) {
        return PropertyList::dictionary({
            {kAudioSubDeviceUIDKey, PropertyList::string(uid)},
            {kAudioSubDeviceDriftCompensationKey, PropertyList::integer(drift)},
            {kAudioSubDeviceOutputLatencyKey, PropertyList::uint32(frames)},
        });
    };
    return PropertyList::dictionary({
        {kAudioAggregateDeviceNameKey, PropertyList::string(kStackedDeviceName)},
        {kAudioAggregateDeviceUIDKey, PropertyList::string(stackedDeviceUID)},
        {kAudioAggregateDeviceIsStackedKey, PropertyList::integer(1)},
        {kAudioAggregateDeviceSubDeviceListKey,
         PropertyList::array({member(primaryUID, 0, primaryFrames), member(secondaryUID, 1, secondaryFrames)})},
    });
}

OSStatus AudioWrapper::createStackedDevice(const std::string& primaryUID, const std::string& secondaryUID,
                                           int primaryMs, int secondaryMs)
{
    destroyOldStackedDevices();
    const UInt32 primaryFrames = delayToFrames(primaryUID, primaryMs);
    const UInt32 secondaryFrames = delayToFrames(secondaryUID, secondaryMs);
    AudioObjectID newID = kAudioObjectUnknown;
    const OSStatus status = access.platform().createAggregateDevice(
        composition(primaryUID, secondaryUID, primaryFrames, secondaryFrames), newID);
    if (status != noErr) {
        print(std::string(messages::kCreateErrorPrefix) + std::to_string(status));
        return status;
    }
    print(std::string(messages::kCreatedPrefix) + std::to_string(newID) + ", latency1=" + std::to_string(primaryMs) +
          "ms latency2=" + std::to_string(secondaryMs) + "ms");
    access.writeUInt32(kAudioObjectSystemObject, kDefaultOutputDevice.address(), newID);
    return noErr;
}

void AudioWrapper::destroyOldStackedDevices()
{
    for (const auto id : getAllDeviceIDs()) {
        if (deviceUID(id) == stackedDeviceUID) {
            access.platform().destroyAggregateDevice(id);
            print(std::string(messages::kCleanupLine));
        }
    }
}

void AudioWrapper::returnAudio(const std::string& uid)
{
    const auto id = findDevice(uid);
    if (!id) {
        return;
    }
    print(std::string(messages::kReturningAudioPrefix) + uid);
    access.writeUInt32(kAudioObjectSystemObject, kDefaultOutputDevice.address(), *id);
}

std::optional<AudioObjectID> AudioWrapper::findStackedDeviceID()
{
    return findDevice(stackedDeviceUID);
}

std::optional<std::vector<AudioObjectID>> AudioWrapper::getActiveSubDevices(AudioObjectID aggregateID)
{
    const auto size = access.readSize(aggregateID, kActiveSubDeviceList.address());
    if (size.status != noErr || size.value == 0) {
        return std::nullopt;
    }
    auto ids = access.readIDs(aggregateID, kActiveSubDeviceList.address(), size.value);
    if (ids.status != noErr) {
        return std::nullopt;
    }
    return std::move(ids.value);
}

void AudioWrapper::setRuntimeLatency(const std::string& uid, int ms)
{
    const auto stackedID = findStackedDeviceID();
    if (!stackedID) {
        return;
    }
    const auto subDevices = getActiveSubDevices(*stackedID);
    if (!subDevices) {
        return;
    }
    for (const auto subID : *subDevices) {
        if (deviceUID(subID) != uid) {
            continue;
        }
        const auto frames = static_cast<Float64>(delayToFrames(uid, ms));
        const OSStatus status = access.writeFloat64(subID, kExtraLatency.address(), frames);
        if (status == noErr) {
            print(std::string(messages::kRuntimeLatencyPrefix) + uid + ": " + std::to_string(ms) + "ms (" +
                  core::shortestFloat(frames) + " frames)");
        } else {
            print(std::string(messages::kRuntimeLatencyFailedPrefix) + std::to_string(status) +
                  std::string(messages::kRuntimeLatencyFailedSuffix));
        }
        return;
    }
}

} // namespace orvanta::audio

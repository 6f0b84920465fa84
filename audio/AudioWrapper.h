#pragma once

// The audio device layer: the output device catalogue, the stacked output device that plays
// through two devices at once, and per-device volume. Devices are named by UID outside this
// class; object IDs are looked up afresh by UID on every call and never kept.

#include "AudioDeviceOption.h"
#include "PropertyAccess.h"
#include "core/DiagnosticLog.h"
#include "hal/AudioHardware.h"

#include <map>
#include <optional>
#include <string>
#include <vector>

namespace orvanta::audio {

inline constexpr const char* stackedDeviceUID = "com.quellon.stacked";
inline constexpr const char* kStackedDeviceName = "Orvanta";

class AudioWrapper
{
public:
    AudioWrapper(hal::AudioHardware& hardware, core::DiagnosticLog diagnostics);
    AudioWrapper(const AudioWrapper&) = delete;
    AudioWrapper& operator=(const AudioWrapper&) = delete;

    // Catalogue.
    std::vector<hal::AudioObjectID> getAllDeviceIDs();
    std::vector<AudioDeviceOption> getOutputDevices();
    bool isBluetooth(hal::AudioObjectID deviceID);
    bool isBluetoothDevice(const std::string& uid);
    double getNominalSampleRate(const std::string& uid);

    // Stacked output device.
    hal::OSStatus createStackedDevice(const std::string& primaryUID, const std::string& secondaryUID, int primaryMs,
                                      int secondaryMs);
    void destroyOldStackedDevices();
    void returnAudio(const std::string& uid);
    void setRuntimeLatency(const std::string& uid, int ms);
    hal::UInt32 delayToFrames(const std::string& uid, int ms);
    std::optional<hal::AudioObjectID> findStackedDeviceID();
    std::optional<std::vector<hal::AudioObjectID>> getActiveSubDevices(hal::AudioObjectID aggregateID);

    // Volume.
    void setVolume(const std::string& uid, float level);
    bool supportsHardwareVolume(const std::string& uid);
    void setDeviceVolume(hal::AudioObjectID deviceID, float level);
    void storeSoftwareVolume(const std::string& uid, float level);

    const std::map<std::string, float>& softwareVolumes() const { return softwareVolumeMap; }
    const std::map<std::string, bool>& deviceSupportsHardwareVolume() const { return hardwareVolumeMap; }

private:
    std::optional<hal::AudioObjectID> findDevice(const std::string& uid);
    std::string deviceUID(hal::AudioObjectID deviceID);
    bool writeVolume(hal::AudioObjectID deviceID, hal::AudioObjectPropertyElement element, float level);
    void reportHardwareVolume(std::string_view viaPrefix, const std::string& uid, float level);
    hal::PropertyList composition(const std::string& primaryUID, const std::string& secondaryUID,
                                  hal::UInt32 primaryFrames, hal::UInt32 secondaryFrames) const;
    void print(const std::string& line) const { log(line); }

    PropertyAccess access;
    core::DiagnosticLog log;
    std::map<std::string, float> softwareVolumeMap;
    std::map<std::string, bool> hardwareVolumeMap;
};

} // namespace orvanta::audio

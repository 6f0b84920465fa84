#pragma once

// The property addresses the audio layer touches, in one table. Each entry is a selector and a
// scope; the element is always main, except for the per-channel volume writes, which form
// their address in place from kVolumeScalarOutput.

#include "AudioTypes.h"

#include <array>
#include <cstdint>

namespace orvanta::hal {

struct PropertyKey
{
    AudioObjectPropertySelector selector;
    AudioObjectPropertyScope scope;

    // The pair as one 64-bit word: the selector's code followed by the scope's code.
    constexpr std::uint64_t word() const { return (static_cast<std::uint64_t>(selector) << 32) | scope; }

    constexpr AudioObjectPropertyAddress
    address(AudioObjectPropertyElement element = kAudioObjectPropertyElementMain) const
    {
        return {selector, scope, element};
    }
};

inline constexpr PropertyKey kDeviceUID{kAudioDevicePropertyDeviceUID, kAudioObjectPropertyScopeGlobal};
inline constexpr PropertyKey kVirtualMainVolume{kAudioHardwareServiceDeviceProperty_VirtualMainVolume,
                                                kAudioObjectPropertyScopeOutput};
inline constexpr PropertyKey kDevices{kAudioHardwarePropertyDevices, kAudioObjectPropertyScopeGlobal};
inline constexpr PropertyKey kOutputStreams{kAudioDevicePropertyStreams, kAudioObjectPropertyScopeOutput};
inline constexpr PropertyKey kName{kAudioObjectPropertyName, kAudioObjectPropertyScopeGlobal};
inline constexpr PropertyKey kTransportType{kAudioDevicePropertyTransportType, kAudioObjectPropertyScopeGlobal};
inline constexpr PropertyKey kNominalSampleRate{kAudioDevicePropertyNominalSampleRate, kAudioObjectPropertyScopeGlobal};
inline constexpr PropertyKey kDefaultOutputDevice{kAudioHardwarePropertyDefaultOutputDevice,
                                                  kAudioObjectPropertyScopeGlobal};
inline constexpr PropertyKey kActiveSubDeviceList{kAudioAggregateDevicePropertyActiveSubDeviceList,
                                                  kAudioObjectPropertyScopeGlobal};
inline constexpr PropertyKey kExtraLatency{kAudioSubDevicePropertyExtraLatency, kAudioObjectPropertyScopeGlobal};

// Formed in place with elements 1, 2 (channels) and 0 (main).
inline constexpr PropertyKey kVolumeScalarOutput{kAudioDevicePropertyVolumeScalar, kAudioObjectPropertyScopeOutput};

// The table in its stored order.
inline constexpr std::array<PropertyKey, 10> kPropertyTable{
    kDeviceUID,           kVirtualMainVolume,   kDevices,     kOutputStreams, kName, kTransportType, kNominalSampleRate,
    kDefaultOutputDevice, kActiveSubDeviceList, kExtraLatency};

} // namespace orvanta::hal

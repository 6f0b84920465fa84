#pragma once

// Scalar types, statuses and property constants of the audio hardware object model. They keep
// the names and values of the Core Audio HAL so that the audio layer reads like the system it
// was designed against, and so that a Core Audio backend can forward every value unchanged.

#include <cstdint>
#include <string>

namespace orvanta::hal {

using OSStatus = std::int32_t;
using AudioObjectID = std::uint32_t;
using AudioObjectPropertySelector = std::uint32_t;
using AudioObjectPropertyScope = std::uint32_t;
using AudioObjectPropertyElement = std::uint32_t;
using Float32 = float;
using Float64 = double;
using UInt32 = std::uint32_t;

// The four-character code 'abcd' as the HAL stores it: first character in the high byte.
constexpr std::uint32_t fourCharCode(const char (&code)[5])
{
    return (static_cast<std::uint32_t>(static_cast<unsigned char>(code[0])) << 24) |
           (static_cast<std::uint32_t>(static_cast<unsigned char>(code[1])) << 16) |
           (static_cast<std::uint32_t>(static_cast<unsigned char>(code[2])) << 8) |
           static_cast<std::uint32_t>(static_cast<unsigned char>(code[3]));
}

// The code back as four characters, for logs and recorded calls.
std::string fourCharString(std::uint32_t code);

// A property of an audio object is named by this triple.
struct AudioObjectPropertyAddress
{
    AudioObjectPropertySelector mSelector = 0;
    AudioObjectPropertyScope mScope = 0;
    AudioObjectPropertyElement mElement = 0;

    friend bool operator==(const AudioObjectPropertyAddress&, const AudioObjectPropertyAddress&) = default;
};

// Statuses.
inline constexpr OSStatus noErr = 0;
inline constexpr OSStatus kAudioHardwareNotRunningError = static_cast<OSStatus>(fourCharCode("stop"));
inline constexpr OSStatus kAudioHardwareUnspecifiedError = static_cast<OSStatus>(fourCharCode("what"));
inline constexpr OSStatus kAudioHardwareUnknownPropertyError = static_cast<OSStatus>(fourCharCode("who?"));
inline constexpr OSStatus kAudioHardwareBadPropertySizeError = static_cast<OSStatus>(fourCharCode("!siz"));
inline constexpr OSStatus kAudioHardwareIllegalOperationError = static_cast<OSStatus>(fourCharCode("nope"));
inline constexpr OSStatus kAudioHardwareBadObjectError = static_cast<OSStatus>(fourCharCode("!obj"));
inline constexpr OSStatus kAudioHardwareBadDeviceError = static_cast<OSStatus>(fourCharCode("!dev"));
inline constexpr OSStatus kAudioHardwareUnsupportedOperationError = static_cast<OSStatus>(fourCharCode("unop"));

// Objects.
inline constexpr AudioObjectID kAudioObjectUnknown = 0;
inline constexpr AudioObjectID kAudioObjectSystemObject = 1;

// Scopes and elements.
inline constexpr AudioObjectPropertyScope kAudioObjectPropertyScopeGlobal = fourCharCode("glob");
inline constexpr AudioObjectPropertyScope kAudioObjectPropertyScopeInput = fourCharCode("inpt");
inline constexpr AudioObjectPropertyScope kAudioObjectPropertyScopeOutput = fourCharCode("outp");
inline constexpr AudioObjectPropertyElement kAudioObjectPropertyElementMain = 0;

// Selectors.
inline constexpr AudioObjectPropertySelector kAudioDevicePropertyDeviceUID = fourCharCode("uid ");
inline constexpr AudioObjectPropertySelector kAudioHardwareServiceDeviceProperty_VirtualMainVolume =
    fourCharCode("vmvc");
inline constexpr AudioObjectPropertySelector kAudioHardwarePropertyDevices = fourCharCode("dev#");
inline constexpr AudioObjectPropertySelector kAudioDevicePropertyStreams = fourCharCode("stm#");
inline constexpr AudioObjectPropertySelector kAudioObjectPropertyName = fourCharCode("lnam");
inline constexpr AudioObjectPropertySelector kAudioDevicePropertyTransportType = fourCharCode("tran");
inline constexpr AudioObjectPropertySelector kAudioDevicePropertyNominalSampleRate = fourCharCode("nsrt");
inline constexpr AudioObjectPropertySelector kAudioHardwarePropertyDefaultOutputDevice = fourCharCode("dOut");
inline constexpr AudioObjectPropertySelector kAudioAggregateDevicePropertyActiveSubDeviceList = fourCharCode("agrp");
inline constexpr AudioObjectPropertySelector kAudioSubDevicePropertyExtraLatency = fourCharCode("xltc");
inline constexpr AudioObjectPropertySelector kAudioDevicePropertyVolumeScalar = fourCharCode("volm");

// Transport types.
inline constexpr UInt32 kAudioDeviceTransportTypeUnknown = 0;
inline constexpr UInt32 kAudioDeviceTransportTypeBuiltIn = fourCharCode("bltn");
inline constexpr UInt32 kAudioDeviceTransportTypeAggregate = fourCharCode("grup");
inline constexpr UInt32 kAudioDeviceTransportTypeVirtual = fourCharCode("virt");
inline constexpr UInt32 kAudioDeviceTransportTypeUSB = fourCharCode("usb ");
inline constexpr UInt32 kAudioDeviceTransportTypeHDMI = fourCharCode("hdmi");
inline constexpr UInt32 kAudioDeviceTransportTypeBluetooth = fourCharCode("blue");
inline constexpr UInt32 kAudioDeviceTransportTypeBluetoothLE = fourCharCode("blea");
inline constexpr UInt32 kAudioDeviceTransportTypeAirPlay = fourCharCode("airp");

// Keys of an aggregate device's composition.
inline constexpr const char* kAudioAggregateDeviceNameKey = "name";
inline constexpr const char* kAudioAggregateDeviceUIDKey = "uid";
inline constexpr const char* kAudioAggregateDeviceIsStackedKey = "stacked";
inline constexpr const char* kAudioAggregateDeviceSubDeviceListKey = "subdevices";
inline constexpr const char* kAudioSubDeviceUIDKey = "uid";
inline constexpr const char* kAudioSubDeviceDriftCompensationKey = "drift";
inline constexpr const char* kAudioSubDeviceOutputLatencyKey = "latency-out";

} // namespace orvanta::hal

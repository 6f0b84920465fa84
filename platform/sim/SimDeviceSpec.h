#pragma once

// What the simulated sound system is made of: devices as a description file or a test states
// them, and the rules by which chosen calls fail.

#include "hal/AudioTypes.h"

#include <optional>
#include <string>
#include <vector>

namespace orvanta::sim {

enum class CallKind
{
    GetPropertyDataSize,
    GetPropertyData,
    SetPropertyData,
    HasProperty,
    CreateAggregateDevice,
    DestroyAggregateDevice,
};

// "getPropertyData" and so on; nullopt for an unknown name.
std::optional<CallKind> callKindFromName(const std::string& name);
const char* callKindName(CallKind kind);

// A volume control of a device: absent, or present and either accepting writes or refusing them.
struct VolumeControlSpec
{
    bool present = false;
    bool writable = true;
    float level = 0.5f;
};

// Makes matching calls return a status instead of doing anything. Unset fields match anything.
struct FailureRule
{
    CallKind call = CallKind::GetPropertyData;
    std::optional<hal::AudioObjectPropertySelector> selector;
    std::optional<hal::AudioObjectPropertyScope> scope;
    std::optional<hal::AudioObjectPropertyElement> element;
    hal::OSStatus status = hal::kAudioHardwareUnspecifiedError;
};

struct DeviceSpec
{
    std::optional<hal::AudioObjectID> id;
    std::string name;
    std::string uid;
    hal::UInt32 transportType = hal::kAudioDeviceTransportTypeUnknown;
    double nominalSampleRate = 48000.0;
    hal::UInt32 outputStreams = 1;
    hal::UInt32 inputStreams = 0;
    VolumeControlSpec virtualMainVolume;
    std::vector<VolumeControlSpec> channelVolumes; // elements 1, 2, ...
    VolumeControlSpec mainVolume;                  // element 0
    std::vector<FailureRule> failures;
};

struct SystemSpec
{
    std::vector<DeviceSpec> devices;
    std::optional<std::string> defaultOutputUID;
    std::vector<FailureRule> failures; // system object, creation and destruction
};

} // namespace orvanta::sim

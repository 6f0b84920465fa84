#pragma once

// Typed reads and writes over the audio hardware interface. Each helper makes exactly one
// platform call with the size its data type has, and hands back the status with the value so
// that the callers decide which statuses matter.

#include "hal/AudioHardware.h"
#include "hal/PropertyTable.h"

#include <string>
#include <vector>

namespace orvanta::audio {

template <typename T> struct PropertyRead
{
    hal::OSStatus status = hal::noErr;
    T value{};
};

class PropertyAccess
{
public:
    explicit PropertyAccess(hal::AudioHardware& platformHardware) : hardware(platformHardware) {}

    // A string property read into a slot that starts empty; an unreadable one stays empty.
    std::string readString(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address);
    PropertyRead<hal::UInt32> readUInt32(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address);
    PropertyRead<hal::Float64> readFloat64(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address);
    // The data size, starting from 0.
    PropertyRead<hal::UInt32> readSize(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address);
    // An array of object IDs into a zeroed buffer of byteSize / 4 entries.
    PropertyRead<std::vector<hal::AudioObjectID>>
    readIDs(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address, hal::UInt32 byteSize);

    hal::OSStatus writeUInt32(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address,
                              hal::UInt32 value);
    hal::OSStatus writeFloat32(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address,
                               hal::Float32 value);
    hal::OSStatus writeFloat64(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address,
                               hal::Float64 value);

    bool has(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address)
    {
        return hardware.hasProperty(object, address);
    }

    hal::AudioHardware& platform() { return hardware; }

private:
    template <typename T>
    PropertyRead<T> readScalar(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address);
    template <typename T>
    hal::OSStatus writeScalar(hal::AudioObjectID object, const hal::AudioObjectPropertyAddress& address, T value);

    hal::AudioHardware& hardware;
};

} // namespace orvanta::audio

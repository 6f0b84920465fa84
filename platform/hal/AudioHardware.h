#pragma once

// The audio hardware service: the six calls through which the audio layer reads and changes
// the system's audio objects. The signatures follow the Core Audio HAL one to one (object ID,
// property address, optional qualifier, data size in bytes, untyped data, 32-bit status), so a
// backend for that platform forwards each call unchanged, and other backends (a simulated
// object model, a sound server) present themselves in the same shape.
//
// Data layouts: strings are StringRef (8 bytes, owned by the caller afterwards), object IDs
// and transport types 32-bit unsigned, volumes Float32, sample rates and latencies Float64.

#include "AudioTypes.h"
#include "PropertyList.h"
#include "StringRef.h"

namespace orvanta::hal {

class AudioHardware
{
public:
    virtual ~AudioHardware() = default;

    // AudioObjectGetPropertyDataSize
    virtual OSStatus getPropertyDataSize(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                         UInt32 qualifierDataSize, const void* qualifierData, UInt32& outDataSize) = 0;

    // AudioObjectGetPropertyData: ioDataSize is the buffer's size in and the bytes written out.
    virtual OSStatus getPropertyData(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                     UInt32 qualifierDataSize, const void* qualifierData, UInt32& ioDataSize,
                                     void* outData) = 0;

    // AudioObjectSetPropertyData
    virtual OSStatus setPropertyData(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                     UInt32 qualifierDataSize, const void* qualifierData, UInt32 dataSize,
                                     const void* data) = 0;

    // AudioObjectHasProperty
    virtual bool hasProperty(AudioObjectID objectID, const AudioObjectPropertyAddress& address) = 0;

    // AudioHardwareCreateAggregateDevice
    virtual OSStatus createAggregateDevice(const PropertyList& description, AudioObjectID& outDeviceID) = 0;

    // AudioHardwareDestroyAggregateDevice
    virtual OSStatus destroyAggregateDevice(AudioObjectID deviceID) = 0;

protected:
    AudioHardware() = default;
    AudioHardware(const AudioHardware&) = default;
    AudioHardware& operator=(const AudioHardware&) = default;
};

} // namespace orvanta::hal

#include "PropertyAccess.h"

namespace orvanta::audio {

using namespace orvanta::hal;

std::string PropertyAccess::readString(AudioObjectID object, const AudioObjectPropertyAddress& address)
{
    StringRef slot = createStringRef({});
    UInt32 size = sizeof slot;
    const StringRef before = slot;
    hardware.getPropertyData(object, address, 0, nullptr, size, &slot);
    if (slot != before) {
        // The call replaced the empty string with one the caller now owns.
        OwnedString discarded(before);
    }
    return OwnedString(slot).text();
}

template <typename T>
PropertyRead<T> PropertyAccess::readScalar(AudioObjectID object, const AudioObjectPropertyAddress& address)
{
    PropertyRead<T> read;
    UInt32 size = sizeof(T);
    read.status = hardware.getPropertyData(object, address, 0, nullptr, size, &read.value);
    return read;
}

template <typename T>
OSStatus PropertyAccess::writeScalar(AudioObjectID object, const AudioObjectPropertyAddress& address, T value)
{
    return hardware.setPropertyData(object, address, 0, nullptr, sizeof value, &value);
}

PropertyRead<UInt32> PropertyAccess::readUInt32(AudioObjectID object, const AudioObjectPropertyAddress& address)
{
    return readScalar<UInt32>(object, address);
}

PropertyRead<Float64> PropertyAccess::readFloat64(AudioObjectID object, const AudioObjectPropertyAddress& address)
{
    return readScalar<Float64>(object, address);
}

PropertyRead<UInt32> PropertyAccess::readSize(AudioObjectID object, const AudioObjectPropertyAddress& address)
{
    PropertyRead<UInt32> read;
    read.status = hardware.getPropertyDataSize(object, address, 0, nullptr, read.value);
    return read;
}

PropertyRead<std::vector<AudioObjectID>>
PropertyAccess::readIDs(AudioObjectID object, const AudioObjectPropertyAddress& address, UInt32 byteSize)
{
    PropertyRead<std::vector<AudioObjectID>> read;
    read.value.assign(byteSize / sizeof(AudioObjectID), kAudioObjectUnknown);
    UInt32 size = byteSize;
    read.status = hardware.getPropertyData(object, address, 0, nullptr, size, read.value.data());
    return read;
}

OSStatus PropertyAccess::writeUInt32(AudioObjectID object, const AudioObjectPropertyAddress& address, UInt32 value)
{
    return writeScalar(object, address, value);
}

OSStatus PropertyAccess::writeFloat32(AudioObjectID object, const AudioObjectPropertyAddress& address, Float32 value)
{
    return writeScalar(object, address, value);
}

OSStatus PropertyAccess::writeFloat64(AudioObjectID object, const AudioObjectPropertyAddress& address, Float64 value)
{
    return writeScalar(object, address, value);
}

} // namespace orvanta::audio

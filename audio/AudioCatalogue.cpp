// The output device catalogue: listing, Bluetooth detection, sample rates.

#include "AudioWrapper.h"

namespace orvanta::audio {

using namespace orvanta::hal;

namespace {

constexpr double kFallbackSampleRate = 48000.0;

bool isBluetoothTransport(UInt32 transport)
{
    return transport == kAudioDeviceTransportTypeBluetooth || transport == kAudioDeviceTransportTypeBluetoothLE;
}

} // namespace

std::vector<AudioObjectID> AudioWrapper::getAllDeviceIDs()
{
    // Neither status matters: a failed read leaves zeroed or no IDs, which match no device.
    const auto size = access.readSize(kAudioObjectSystemObject, kDevices.address());
    return access.readIDs(kAudioObjectSystemObject, kDevices.address(), size.value).value;
}

std::vector<AudioDeviceOption> AudioWrapper::getOutputDevices()
{
    std::vector<AudioDeviceOption> outputs;
    for (const auto id : getAllDeviceIDs()) {
        if (access.readSize(id, kOutputStreams.address()).value == 0) {
            continue;
        }
        AudioDeviceOption option;
        option.name = access.readString(id, kName.address());
        option.uid = deviceUID(id);
        const auto transport = access.readUInt32(id, kTransportType.address());
        option.isBluetooth = transport.status == noErr && isBluetoothTransport(transport.value);
        if (option.uid == stackedDeviceUID) {
            continue;
        }
        outputs.push_back(std::move(option));
    }
    return outputs;
}

bool AudioWrapper::isBluetooth(AudioObjectID deviceID)
{
    const auto transport = access.readUInt32(deviceID, kTransportType.address());
    return transport.status == noErr && isBluetoothTransport(transport.value);
}

bool AudioWrapper::isBluetoothDevice(const std::string& uid)
{
    const auto id = findDevice(uid);
    return id && isBluetooth(*id);
}

double AudioWrapper::getNominalSampleRate(const std::string& uid)
{
    const auto id = findDevice(uid);
    if (!id) {
        return kFallbackSampleRate;
    }
    const auto rate = access.readFloat64(*id, kNominalSampleRate.address());
    return rate.status == noErr && rate.value > 0 ? rate.value : kFallbackSampleRate;
}

} // namespace orvanta::audio

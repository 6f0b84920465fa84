#include "DeviceDescription.h"

namespace orvanta::sim {

namespace {

VolumeControlSpec writableVolume()
{
    return {true, true, 0.5f};
}

DeviceSpec output(std::string name, std::string uid, hal::UInt32 transport, double rate)
{
    DeviceSpec device;
    device.name = std::move(name);
    device.uid = std::move(uid);
    device.transportType = transport;
    device.nominalSampleRate = rate;
    return device;
}

} // namespace

SystemSpec builtinDeviceDescription()
{
    auto speakers = output("Built-in Speakers", "alsa_output.pci-0000_00_1f.3.analog-stereo",
                           hal::kAudioDeviceTransportTypeBuiltIn, 48000);
    speakers.virtualMainVolume = writableVolume();

    auto bluetooth =
        output("Bluetooth Speaker", "bluez_output.A4_77_58_0C_11_2E.1", hal::kAudioDeviceTransportTypeBluetooth, 44100);
    bluetooth.channelVolumes = {writableVolume(), writableVolume()};

    auto headphones = output("Bluetooth LE Headphones", "bluez_output.F0_4B_3A_22_90_71.1",
                             hal::kAudioDeviceTransportTypeBluetoothLE, 48000);
    headphones.virtualMainVolume = writableVolume();

    auto headset =
        output("USB Headset", "alsa_output.usb-Headset_00.analog-stereo", hal::kAudioDeviceTransportTypeUSB, 48000);
    headset.inputStreams = 1;
    headset.mainVolume = writableVolume();

    auto microphone = output("USB Microphone", "alsa_input.usb-Microphone_00.mono-fallback",
                             hal::kAudioDeviceTransportTypeUSB, 48000);
    microphone.outputStreams = 0;
    microphone.inputStreams = 1;

    auto hdmi =
        output("HDMI Display", "alsa_output.pci-0000_01_00.1.hdmi-stereo", hal::kAudioDeviceTransportTypeHDMI, 48000);

    SystemSpec system;
    system.devices = {speakers, bluetooth, headphones, headset, microphone, hdmi};
    system.defaultOutputUID = speakers.uid;
    return system;
}

} // namespace orvanta::sim

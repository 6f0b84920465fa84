#pragma once

// A simulated sound system with an AudioWrapper over it, and small builders for devices.

#include "audio/AudioWrapper.h"
#include "core/DiagnosticLog.h"
#include "sim/SimulatedAudioHardware.h"

#include <algorithm>
#include <string>
#include <vector>

namespace orvanta::testing {

inline sim::DeviceSpec outputDevice(std::string name, std::string uid,
                                    hal::UInt32 transport = hal::kAudioDeviceTransportTypeBuiltIn, double rate = 48000)
{
    sim::DeviceSpec device;
    device.name = std::move(name);
    device.uid = std::move(uid);
    device.transportType = transport;
    device.nominalSampleRate = rate;
    return device;
}

inline sim::VolumeControlSpec volumeControl(bool writable = true)
{
    return {true, writable, 0.5f};
}

struct SimAudio
{
    explicit SimAudio(std::vector<sim::DeviceSpec> devices) : system(sim::SystemSpec{std::move(devices), {}, {}}) {}

    // The calls recorded so far as text, keeping only those whose text starts with one of prefixes
    // ("get", "set", "has", "size", "create", "destroy"); all of them when none is given.
    std::vector<std::string> calls(std::initializer_list<std::string> prefixes = {}) const
    {
        std::vector<std::string> out;
        for (const auto& call : system.calls()) {
            const auto text = call.toString();
            if (prefixes.size() == 0 || std::any_of(prefixes.begin(), prefixes.end(), [&text](const std::string& p) {
                    return text.rfind(p + " ", 0) == 0;
                })) {
                out.push_back(text);
            }
        }
        return out;
    }

    void reset()
    {
        system.clearCalls();
        printed.lines.clear();
    }

    hal::AudioObjectID idOf(const std::string& uid) const { return system.deviceWithUID(uid)->id; }

    sim::SimulatedAudioHardware system;
    core::CollectedLines printed;
    audio::AudioWrapper audio{system, printed.log()};
};

} // namespace orvanta::testing

#include "PulseObjects.h"

#include "ModuleArguments.h"

#include <charconv>

namespace orvanta::pulse {

namespace {

const std::string kMonitorSuffix = ".monitor";

} // namespace

std::optional<Loopback> loopbackOf(const ModuleRecord& module)
{
    if (module.name != kLoopbackModule) {
        return std::nullopt;
    }
    const auto arguments = parseModuleArguments(module.argument);
    Loopback loopback{module.index, {}, {}, 0};
    if (const auto it = arguments.find("source"); it != arguments.end()) {
        loopback.source = it->second;
    }
    if (const auto it = arguments.find("sink"); it != arguments.end()) {
        loopback.sink = it->second;
    }
    if (const auto it = arguments.find("latency_msec"); it != arguments.end()) {
        std::from_chars(it->second.data(), it->second.data() + it->second.size(), loopback.latencyMs);
    }
    return loopback;
}

std::vector<Loopback> loopbacksFrom(const PulseMirror& mirror, const std::string& sinkName)
{
    std::vector<Loopback> found;
    for (const auto& [index, module] : mirror.modules) {
        auto loopback = loopbackOf(module);
        if (loopback && loopback->source == sinkName + kMonitorSuffix && !mirror.retiringModules.contains(index)) {
            found.push_back(std::move(*loopback));
        }
    }
    return found;
}

bool isNullSink(const PulseMirror& mirror, const SinkRecord& sink)
{
    const auto owner = mirror.modules.find(sink.ownerModule);
    return owner != mirror.modules.end() && owner->second.name == kNullSinkModule;
}

hal::UInt32 transportType(const PulseMirror& mirror, const SinkRecord& sink)
{
    if (sink.bus == "bluetooth" || sink.api.starts_with("bluez") || sink.name.starts_with("bluez_")) {
        // LE Audio sinks run the BAP profile; classic ones A2DP or HFP.
        return sink.bluetoothProfile.starts_with("bap") ? hal::kAudioDeviceTransportTypeBluetoothLE
                                                        : hal::kAudioDeviceTransportTypeBluetooth;
    }
    if (sink.bus == "usb") {
        return hal::kAudioDeviceTransportTypeUSB;
    }
    if (sink.bus == "pci" || sink.bus == "isa") {
        return sink.name.find("hdmi") != std::string::npos ? hal::kAudioDeviceTransportTypeHDMI
                                                           : hal::kAudioDeviceTransportTypeBuiltIn;
    }
    if (isNullSink(mirror, sink)) {
        return hal::kAudioDeviceTransportTypeVirtual;
    }
    return hal::kAudioDeviceTransportTypeUnknown;
}

const SinkRecord* sinkNamed(const PulseMirror& mirror, const std::string& name)
{
    for (const auto& [index, sink] : mirror.sinks) {
        if (sink.name == name) {
            return &sink;
        }
    }
    return nullptr;
}

} // namespace orvanta::pulse

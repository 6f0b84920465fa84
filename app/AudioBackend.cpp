#include "AudioBackend.h"

#include "sim/DeviceDescription.h"
#include "sim/SimStateFile.h"
#include "sim/SimulatedAudioHardware.h"

#include <cstdlib>
#include <variant>

namespace orvanta::app {

namespace {

std::string environment(const char* name)
{
    const char* value = std::getenv(name);
    return value ? std::string(value) : std::string();
}

AudioBackend simulatedBackend(const std::string& reason)
{
    AudioBackend backend;
    const std::string devicesPath = environment("ORVANTA_SIM_DEVICES");
    sim::SystemSpec spec;
    if (devicesPath.empty()) {
        spec = sim::builtinDeviceDescription();
    } else {
        auto loaded = sim::loadDeviceDescription(devicesPath);
        if (auto* error = std::get_if<std::string>(&loaded)) {
            backend.error = *error;
            return backend;
        }
        spec = std::get<sim::SystemSpec>(std::move(loaded));
    }
    auto simulated = std::make_unique<sim::SimulatedAudioHardware>(spec);
    const std::string statePath = environment("ORVANTA_SIM_STATE");
    if (!statePath.empty() && !sim::watchStateInFile(*simulated, statePath, backend.error)) {
        return backend;
    }
    backend.hardware = std::move(simulated);
    backend.description = "Using the simulated sound system (" +
                          (devicesPath.empty() ? std::string("built-in devices") : devicesPath) + ")" + reason;
    return backend;
}

} // namespace

AudioBackend chooseAudioBackend()
{
    const std::string choice = environment("ORVANTA_AUDIO");
    if (choice.empty() || choice == "auto") {
        return simulatedBackend(": no sound server backend is built into this version");
    }
    if (choice == "simulated") {
        return simulatedBackend("");
    }
    AudioBackend backend;
    backend.error = "ORVANTA_AUDIO=" + choice + ": this version offers \"simulated\" or \"auto\"";
    return backend;
}

} // namespace orvanta::app

#include "AudioBackend.h"

#include "pipewire/PipeWireAudioHardware.h"
#include "pipewire/PipeWireLoop.h"
#include "pulse/PulseAudioHardware.h"
#include "pulse/PulseConnection.h"
#include "sim/DeviceDescription.h"
#include "sim/SimStateFile.h"
#include "sim/SimulatedAudioHardware.h"

#include <chrono>
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

// How long start-up waits for the sound server to answer.
constexpr std::chrono::milliseconds kServerAnswerBound{1500};

// A sound server answers through libpulse either way; it is PipeWire when its pulse server
// says so and PipeWire's own daemon answers too, and then Orvanta hosts the stacked device.
bool isPipeWire(const pulse::PulseConnection& connection)
{
    return connection.withMirror(
        [](const pulse::PulseMirror& mirror) { return mirror.serverName.find("PipeWire") != std::string::npos; });
}

AudioBackend serverBackend(std::unique_ptr<pulse::PulseConnection> connection, bool answered)
{
    AudioBackend backend;
    if (answered && isPipeWire(*connection)) {
        if (auto session = pipewire::PipeWireLoop::connect()) {
            auto hardware =
                std::make_unique<pipewire::PipeWireAudioHardware>(std::move(connection), std::move(session));
            backend.connection = &hardware->connection();
            backend.hardware = std::move(hardware);
            backend.description = "Using PipeWire";
            backend.serverName = "PipeWire";
            return backend;
        }
    }
    const bool pipeWireServer = answered && isPipeWire(*connection);
    auto hardware = std::make_unique<pulse::PulseAudioHardware>(std::move(connection));
    backend.connection = &hardware->connection();
    backend.hardware = std::move(hardware);
    if (!answered) {
        backend.description = "The sound server does not answer yet; Orvanta will connect when it does";
    } else {
        backend.description = pipeWireServer ? "Using PipeWire's pulse server" : "Using PulseAudio";
        backend.serverName = pipeWireServer ? "PipeWire" : "PulseAudio";
    }
    return backend;
}

} // namespace

AudioBackend chooseAudioBackend()
{
    const std::string choice = environment("ORVANTA_AUDIO");
    if (choice == "simulated") {
        return simulatedBackend("");
    }
    if (choice == "pulse") {
        auto connection = std::make_unique<pulse::PulseConnection>();
        const bool answered = connection->waitUntilReady(kServerAnswerBound);
        return serverBackend(std::move(connection), answered);
    }
    if (choice.empty() || choice == "auto") {
        auto connection = std::make_unique<pulse::PulseConnection>();
        if (connection->waitUntilReady(kServerAnswerBound)) {
            return serverBackend(std::move(connection), true);
        }
        return simulatedBackend(": no sound server answered");
    }
    AudioBackend backend;
    backend.error = "ORVANTA_AUDIO=" + choice + ": expected \"auto\", \"pulse\" or \"simulated\"";
    return backend;
}

} // namespace orvanta::app

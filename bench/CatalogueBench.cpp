// Reading the catalogue and finding a device by UID over simulated systems of 2, 16 and 128
// devices. Every lookup walks the platform's device list afresh, so both grow with its size.

#include "audio/AudioWrapper.h"
#include "sim/SimulatedAudioHardware.h"

#include <benchmark/benchmark.h>

#include <string>

namespace {

using namespace orvanta;

sim::SystemSpec devices(int count)
{
    sim::SystemSpec spec;
    for (int i = 0; i < count; ++i) {
        sim::DeviceSpec device;
        device.name = "Device " + std::to_string(i);
        device.uid = "alsa_output.bench-" + std::to_string(i) + ".analog-stereo";
        device.transportType = i % 3 == 0 ? hal::kAudioDeviceTransportTypeBluetooth : hal::kAudioDeviceTransportTypeUSB;
        device.nominalSampleRate = 48000;
        device.virtualMainVolume = {true, true, 0.5f};
        spec.devices.push_back(device);
    }
    return spec;
}

// The call log would grow without bound over millions of iterations; clear it as we go.
void trimLog(sim::SimulatedAudioHardware& system)
{
    if (system.calls().size() > 100000) {
        system.clearCalls();
    }
}

void CatalogueRead(benchmark::State& state)
{
    sim::SimulatedAudioHardware system(devices(static_cast<int>(state.range(0))));
    audio::AudioWrapper audio(system, [](std::string_view) {});
    for (auto _ : state) {
        benchmark::DoNotOptimize(audio.getOutputDevices());
        trimLog(system);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}

void UIDLookup(benchmark::State& state)
{
    const int count = static_cast<int>(state.range(0));
    sim::SimulatedAudioHardware system(devices(count));
    audio::AudioWrapper audio(system, [](std::string_view) {});
    // The last device: the walk reads every UID before it finds the match.
    const std::string uid = "alsa_output.bench-" + std::to_string(count - 1) + ".analog-stereo";
    for (auto _ : state) {
        benchmark::DoNotOptimize(audio.isBluetoothDevice(uid));
        trimLog(system);
    }
}

BENCHMARK(CatalogueRead)->Arg(2)->Arg(16)->Arg(128);
BENCHMARK(UIDLookup)->Arg(2)->Arg(16)->Arg(128);

} // namespace

BENCHMARK_MAIN();

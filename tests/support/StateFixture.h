#pragma once

// An AppState over a simulated sound system and simulated services.

#include "support/SimAudio.h"

#include "services/UserDefaults.h"
#include "sim/MemoryLoginItems.h"
#include "sim/MemoryUserDefaults.h"
#include "sim/SimAccessibilityTrust.h"
#include "sim/SimEventTap.h"
#include "state/AppState.h"
#include "state/MediaKeyManager.h"

#include <memory>

namespace orvanta::testing {

inline const audio::AudioDeviceOption kSpeakers{"Speakers", "spk", false};
inline const audio::AudioDeviceOption kBluetooth{"BT Speaker", "bt", true};

inline std::vector<sim::DeviceSpec> speakersAndBluetooth()
{
    auto speakers = outputDevice("Speakers", "spk");
    speakers.virtualMainVolume = volumeControl();
    auto bluetooth = outputDevice("BT Speaker", "bt", hal::kAudioDeviceTransportTypeBluetooth, 44100);
    bluetooth.channelVolumes = {volumeControl(), volumeControl()};
    return {speakers, bluetooth};
}

struct StateFixture
{
    explicit StateFixture(std::vector<sim::DeviceSpec> devices = speakersAndBluetooth()) : sim(std::move(devices)) {}

    // Creates the AppState, over `defaults` when given, else over the in-memory settings.
    state::AppState& start(services::UserDefaults* defaults = nullptr)
    {
        appState = std::make_unique<state::AppState>(state::AppStateServices{
            sim.audio, defaults ? *defaults : memoryDefaults, loginItems, trust, mediaKeys, sim.printed.log()});
        return *appState;
    }

    void selectBoth()
    {
        appState->setSelectedDevice1(kSpeakers);
        appState->setSelectedDevice2(kBluetooth);
    }

    SimAudio sim;
    sim::MemoryUserDefaults memoryDefaults;
    sim::MemoryLoginItems loginItems;
    sim::SimAccessibilityTrust trust;
    sim::SimEventTap taps;
    state::MediaKeyManager mediaKeys{taps, sim.printed.log()};
    std::unique_ptr<state::AppState> appState;
};

} // namespace orvanta::testing

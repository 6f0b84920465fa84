#pragma once

// Chooses the sound system the program runs against, once, at start:
//   ORVANTA_AUDIO        simulated | pulse | auto (default)
//   ORVANTA_SIM_DEVICES  a JSON device description for the simulated system (else a built-in set)
//   ORVANTA_SIM_STATE    a file that mirrors the simulated system's state after every change

#include "hal/AudioHardware.h"

#include <memory>
#include <string>

namespace orvanta::pulse {
class PulseConnection;
}

namespace orvanta::app {

struct AudioBackend
{
    std::unique_ptr<hal::AudioHardware> hardware;
    pulse::PulseConnection* connection = nullptr; // the sound server's, owned by hardware; null when simulated
    std::string serverName;                       // "PipeWire" or "PulseAudio" once a server answered
    std::string description;                      // one line for the user: which sound system is in use
    std::string error;                            // set when no backend could be made; hardware is then null
};

AudioBackend chooseAudioBackend();

} // namespace orvanta::app

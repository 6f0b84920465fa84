#pragma once

// The whole state of a simulated sound system as JSON (devices with their volumes, aggregates
// with their composition and latencies, the default output), and a file that is rewritten
// atomically after every change so that a person or a script can watch what the program did.

#include "SimulatedAudioHardware.h"

#include <string>

namespace orvanta::sim {

std::string stateAsJson(const SimulatedAudioHardware& system);

// Writes the state to path now and after every change of system. Each write goes to a
// temporary file that then replaces path, so a reader never sees half a file, and a write
// that fails leaves the previous state in place. Returns false and leaves an error text when
// the first write fails; a later failure is one line on standard error.
bool watchStateInFile(SimulatedAudioHardware& system, const std::string& path, std::string& error);

} // namespace orvanta::sim

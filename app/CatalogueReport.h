#pragma once

// A plain-text table of the output devices the audio layer sees, for the command line.

#include "audio/AudioWrapper.h"

#include <string>

namespace orvanta::app {

std::string catalogueReport(audio::AudioWrapper& audio);

} // namespace orvanta::app

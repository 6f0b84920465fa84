#pragma once

// A meter for what the user hears from a stacked device, on a private sound server. Both
// members are remaps of one 4-channel null sink ("hw"): member "mA" plays on its front pair,
// "mB" on its rear pair. Recording hw's monitor in one stream times both members by the same
// clock, to the frame.

#include "support/SoundServer.h"

#include <functional>
#include <optional>

namespace orvanta::testing {

// Loads hw, mA and mB.
bool loadMeterRig(const SoundServer& server);

// Plays a click into the stacked device: the time mA plays it minus the time mB does, in ms.
std::optional<double> measureOffsetMs(const SoundServer& server);

// Plays a steady tone into the stacked device, runs change 0.5 s in, and gives the longest
// stretch, in ms, in which either member fell silent.
std::optional<double> longestSilenceMs(const SoundServer& server, const std::function<void()>& change);

} // namespace orvanta::testing

#pragma once

// How loud each member of a stacked device plays, on the meter rig of OffsetMeter.h (members
// "mA" and "mB" on the front and rear pairs of one null sink): a steady tone is played
// into the stacked device and hw's monitor recorded, so both members are heard through the same
// recording.

#include "support/SoundServer.h"

#include <optional>

namespace orvanta::testing {

struct MemberLevels
{
    double primary = 0.0;   // RMS of mA's left channel, at full scale 1
    double secondary = 0.0; // RMS of mB's left channel
};

std::optional<MemberLevels> measureMemberLevels(const SoundServer& server);

} // namespace orvanta::testing

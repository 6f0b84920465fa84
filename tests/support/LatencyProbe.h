#pragma once

// What a player is told about latency, against what it gets. One thread plays the same sound
// through two libpulse streams, into the stacked device and into "ref", and asks each for its
// latency (as video players do) just before writing a click into it; the meter's recording times
// both clicks by the one clock.

#include "support/OffsetMeter.h"

namespace orvanta::testing {

struct LatencyProbe
{
    double toldStackedMs = 0;   // what the stream into the stacked device was told
    double toldReferenceMs = 0; // what the stream into "ref" was told
    double writeGapMs = 0;      // how much later the click went to ref than to the stacked device
    long stackedClick = -1;     // the frame at which the later member played the click
    long referenceClick = -1;   // the frame at which ref played it

    // Told minus heard, in ms, for the stacked device against ref.
    double errorMs() const;
};

// Null when a stream could not play or a click was not heard once on each channel.
std::optional<LatencyProbe> probeLatency(const SoundServer& server);

} // namespace orvanta::testing

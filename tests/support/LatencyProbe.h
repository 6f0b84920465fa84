#pragma once

// What a player is told about latency, against what it gets. One thread plays the same sound
// through two libpulse streams at once, one into the stacked device and one into the meter's
// plain "ref" sink, and asks each stream for its latency (pa_stream_get_latency, as video
// players do) just before writing a click into it. The meter then times both clicks by one
// clock, so the stacked device's true latency is known relative to a plain sink's.

#include "support/SoundServer.h"

#include <optional>

namespace orvanta::testing {

struct LatencyProbe
{
    double toldStackedMs = 0;   // what the stream into the stacked device was told
    double toldReferenceMs = 0; // what the stream into "ref" was told
    double writeGapMs = 0;      // how much later the click went to ref than to the stacked device
    long stackedClick = -1;     // the frame at which the later member played the click
    long referenceClick = -1;   // the frame at which ref played it
};

// Null when a stream could not play or a click was not heard.
std::optional<LatencyProbe> probeLatency(const SoundServer& server);

} // namespace orvanta::testing

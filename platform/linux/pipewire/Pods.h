#pragma once

// The few parameter objects the stacked device hands to PipeWire, built into a caller's buffer.

#include <spa/param/latency-utils.h>
#include <spa/pod/builder.h>

namespace orvanta::pipewire {

// 32-bit float, interleaved, front left and right, at the rate the delay line counts in.
const spa_pod* stereoFormat(spa_pod_builder& builder);
const spa_pod* latencyParam(spa_pod_builder& builder, const spa_latency_info& info);

} // namespace orvanta::pipewire

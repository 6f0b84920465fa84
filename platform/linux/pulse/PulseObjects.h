#pragma once

// Questions about the mirror that the hardware interface asks: which loopbacks feed from a
// stacked sink, what transport a sink has, which devices exist in what order.

#include "PulseMirror.h"
#include "hal/AudioTypes.h"

#include <optional>
#include <string>
#include <vector>

namespace orvanta::pulse {

inline constexpr const char* kLoopbackModule = "module-loopback";
inline constexpr const char* kNullSinkModule = "module-null-sink";

struct Loopback
{
    std::uint32_t module = 0;
    std::string source;
    std::string sink;
    int latencyMs = 0;
};

std::optional<Loopback> loopbackOf(const ModuleRecord& module);
// The loopbacks that play a sink's monitor, by module index (the order they were loaded in).
std::vector<Loopback> loopbacksFrom(const PulseMirror& mirror, const std::string& sinkName);
bool isNullSink(const PulseMirror& mirror, const SinkRecord& sink);
hal::UInt32 transportType(const PulseMirror& mirror, const SinkRecord& sink);
const SinkRecord* sinkNamed(const PulseMirror& mirror, const std::string& name);

} // namespace orvanta::pulse

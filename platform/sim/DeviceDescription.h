#pragma once

// Reads a simulated sound system from a JSON description:
//
//   { "defaultOutput": "uid",                       (optional)
//     "failures": [ rule, ... ],                    (optional; any object, creation, destruction)
//     "devices": [ {
//         "name": "Desk Speaker", "uid": "desk", "id": 40,              (id optional)
//         "transport": "blue",            four-character code: bltn blue blea usb  hdmi virt airp ...
//         "sampleRate": 44100, "outputStreams": 1, "inputStreams": 0,
//         "virtualMainVolume": { "writable": true, "level": 0.5 },      (each control optional)
//         "channelVolumes": [ { "writable": true }, { "writable": false } ],
//         "mainVolume": { "writable": true },
//         "failures": [ { "call": "getPropertyData", "selector": "nsrt", "scope": "glob",
//                         "element": 0, "status": -50 } ] } ] }
//
// Calls are getPropertyDataSize, getPropertyData, setPropertyData, hasProperty,
// createAggregateDevice and destroyAggregateDevice; selector, scope and element are optional.
//
// A description comes from outside the program, so it is bounded: it is read only from a
// regular file of at most kMaxDescriptionBytes, and its lists, counts and strings have the
// limits below. Errors are one line, with control characters escaped.

#include "SimDeviceSpec.h"

#include <string>
#include <variant>

namespace orvanta::sim {

inline constexpr std::size_t kMaxDescriptionBytes = 1024 * 1024;
inline constexpr std::size_t kMaxDescriptionTextBytes = 1024; // names, UIDs, codes
inline constexpr long long kMaxDescriptionDevices = 256;
inline constexpr long long kMaxDescriptionFailureRules = 256; // per list
inline constexpr long long kMaxDescriptionChannels = 64;
inline constexpr unsigned kMaxDescriptionStreams = 64;

// The description, or one line naming the source and what is wrong with it.
using DescriptionResult = std::variant<SystemSpec, std::string>;

DescriptionResult parseDeviceDescription(const std::string& json, const std::string& sourceName);
DescriptionResult loadDeviceDescription(const std::string& path);

// The devices a newcomer sees without a description file.
SystemSpec builtinDeviceDescription();

} // namespace orvanta::sim

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

#include "SimDeviceSpec.h"

#include <string>
#include <variant>

namespace orvanta::sim {

// The description, or one line naming the source and what is wrong with it.
using DescriptionResult = std::variant<SystemSpec, std::string>;

DescriptionResult parseDeviceDescription(const std::string& json, const std::string& sourceName);
DescriptionResult loadDeviceDescription(const std::string& path);

// The devices a newcomer sees without a description file.
SystemSpec builtinDeviceDescription();

} // namespace orvanta::sim

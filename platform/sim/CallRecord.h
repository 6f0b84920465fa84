#pragma once

// One call made to the simulated sound system, as tests read it back.

#include "SimDeviceSpec.h"
#include "hal/AudioTypes.h"

#include <string>

namespace orvanta::sim {

struct CallRecord
{
    CallKind kind = CallKind::GetPropertyData;
    hal::AudioObjectID objectID = hal::kAudioObjectUnknown;
    hal::AudioObjectPropertyAddress address;
    hal::UInt32 dataSize = 0; // the size passed in (get, set)
    std::string value;        // what was written, or the composition handed to creation
    hal::OSStatus status = hal::noErr;
    bool answer = false;                                     // hasProperty's result
    hal::AudioObjectID createdID = hal::kAudioObjectUnknown; // createAggregateDevice's result

    static CallRecord of(CallKind kind, hal::AudioObjectID objectID = hal::kAudioObjectUnknown,
                         hal::AudioObjectPropertyAddress address = {}, hal::UInt32 dataSize = 0)
    {
        CallRecord record;
        record.kind = kind;
        record.objectID = objectID;
        record.address = address;
        record.dataSize = dataSize;
        return record;
    }

    // One line, for example "set 2 'vmvc' outp 0 [4] 0.5 -> 0" or "has 5 'volm' outp 1 -> false".
    std::string toString() const;
};

} // namespace orvanta::sim

#pragma once

// An in-process sound system behind the audio hardware interface. It holds devices made from a
// description, keeps the default output device, builds stacked aggregates whose sub-device
// objects carry the members' UIDs and extra latencies, and records every call in order.
// Unknown objects, unknown properties, wrong sizes and refused writes fail with the statuses
// the real service uses; tests can make any call fail on purpose.

#include "CallRecord.h"
#include "SimDeviceSpec.h"
#include "hal/AudioHardware.h"
#include "hal/PropertyValue.h"

#include <cstddef>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace orvanta::sim {

struct SimDevice
{
    hal::AudioObjectID id = hal::kAudioObjectUnknown;
    DeviceSpec spec;
    bool isAggregate = false;
    hal::PropertyList composition;              // aggregates: what creation was given
    std::vector<hal::AudioObjectID> subDevices; // aggregates: the active sub-device objects
};

struct SimSubDevice
{
    hal::AudioObjectID id = hal::kAudioObjectUnknown;
    hal::AudioObjectID aggregate = hal::kAudioObjectUnknown;
    std::string uid;
    double extraLatencyFrames = 0.0;
};

class SimulatedAudioHardware final : public hal::AudioHardware
{
public:
    explicit SimulatedAudioHardware(const SystemSpec& spec);

    hal::OSStatus getPropertyDataSize(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address,
                                      hal::UInt32 qualifierDataSize, const void* qualifierData,
                                      hal::UInt32& outDataSize) override;
    hal::OSStatus getPropertyData(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address,
                                  hal::UInt32 qualifierDataSize, const void* qualifierData, hal::UInt32& ioDataSize,
                                  void* outData) override;
    hal::OSStatus setPropertyData(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address,
                                  hal::UInt32 qualifierDataSize, const void* qualifierData, hal::UInt32 dataSize,
                                  const void* data) override;
    bool hasProperty(hal::AudioObjectID objectID, const hal::AudioObjectPropertyAddress& address) override;
    hal::OSStatus createAggregateDevice(const hal::PropertyList& description, hal::AudioObjectID& outDeviceID) override;
    hal::OSStatus destroyAggregateDevice(hal::AudioObjectID deviceID) override;

    // Every call so far, in order.
    const std::vector<CallRecord>& calls() const { return callLog; }
    void clearCalls() { callLog.clear(); }

    // The n-th call from now (1 = the next one) returns status and does nothing else;
    // a failing hasProperty answers false.
    void failNthCallFromNow(std::size_t n, hal::OSStatus status);
    // Matching calls on this object (nullopt: on any object) fail with the rule's status.
    void addFailure(std::optional<hal::AudioObjectID> objectID, const FailureRule& rule);
    // Runs before each call is carried out, so a test can change the system between two calls.
    void setBeforeCall(std::function<void(const CallRecord&)> hook) { beforeCall = std::move(hook); }
    // Runs after every change of the system's state.
    void setOnChange(std::function<void()> hook) { onChange = std::move(hook); }

    // Devices coming and going, as when a speaker is plugged in or switched off.
    hal::AudioObjectID addDevice(const DeviceSpec& spec);
    bool removeDevice(const std::string& uid);
    bool renameDevice(const std::string& uid, const std::string& name);

    const std::vector<SimDevice>& devices() const { return deviceList; }
    const SimDevice* device(hal::AudioObjectID id) const;
    const SimDevice* deviceWithUID(const std::string& uid) const;
    const SimSubDevice* subDevice(hal::AudioObjectID id) const;
    hal::AudioObjectID defaultOutputDevice() const { return defaultOutput; }

private:
    using SlotValue = hal::PropertyValue;
    using SlotWriter = std::function<hal::OSStatus(const SlotValue&)>;
    struct Slot
    {
        SlotValue value;
        bool settable = false;
        SlotWriter write;
    };
    static Slot readOnly(SlotValue value) { return Slot{std::move(value), false, {}}; }
    static Slot settable(SlotValue value, bool writable, SlotWriter write)
    {
        return Slot{std::move(value), writable, std::move(write)};
    }

    struct ScopedRule
    {
        std::optional<hal::AudioObjectID> objectID;
        FailureRule rule;
    };

    bool objectExists(hal::AudioObjectID id) const;
    hal::OSStatus missingStatus(hal::AudioObjectID id) const;
    SimDevice* findDevice(hal::AudioObjectID id);
    std::optional<Slot> resolve(hal::AudioObjectID id, const hal::AudioObjectPropertyAddress& address);
    std::optional<Slot> resolveSystem(const hal::AudioObjectPropertyAddress& address);
    std::optional<Slot> resolveDevice(SimDevice& device, const hal::AudioObjectPropertyAddress& address);
    std::optional<Slot> resolveSubDevice(SimSubDevice& sub, const hal::AudioObjectPropertyAddress& address);
    std::optional<Slot> volumeSlot(VolumeControlSpec* control);
    std::vector<hal::AudioObjectID> streamIDs(const SimDevice& device, hal::AudioObjectPropertyScope scope) const;

    // Records the call, runs the hook and returns the injected status, if any.
    std::optional<hal::OSStatus> begin(CallRecord& record);
    hal::OSStatus finish(CallRecord record, hal::OSStatus status);
    std::optional<hal::OSStatus> ruleStatus(const CallRecord& record) const;

    hal::OSStatus writeSlot(const Slot& slot, hal::UInt32 dataSize, const void* data);
    hal::OSStatus setDefaultOutput(hal::AudioObjectID id);
    hal::AudioObjectID buildAggregate(const std::string& uid, const hal::PropertyList& description);
    void chooseDefaultOutputAfterRemoval(hal::AudioObjectID removed);
    void changed();

    std::vector<SimDevice> deviceList;
    std::map<hal::AudioObjectID, SimSubDevice> subDeviceMap;
    hal::AudioObjectID defaultOutput = hal::kAudioObjectUnknown;
    hal::AudioObjectID nextID = 2;

    std::vector<CallRecord> callLog;
    std::vector<ScopedRule> rules;
    std::map<std::size_t, hal::OSStatus> failAtCall; // by 1-based call number
    std::function<void(const CallRecord&)> beforeCall;
    std::function<void()> onChange;
};

} // namespace orvanta::sim

#include "SimulatedAudioHardware.h"

#include "core/NumberFormat.h"
#include "hal/PropertyTable.h"
#include "hal/PropertyValue.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace orvanta::sim {

using namespace orvanta::hal;

namespace {

bool matches(const PropertyKey& key, const AudioObjectPropertyAddress& address)
{
    return key.selector == address.mSelector && key.scope == address.mScope;
}

bool isMainElement(const AudioObjectPropertyAddress& address)
{
    return address.mElement == kAudioObjectPropertyElementMain;
}

// The written value as text: object IDs as integers, 4-byte values as Float32, 8-byte ones as Float64.
std::string describeWrite(const AudioObjectPropertyAddress& address, UInt32 dataSize, const void* data)
{
    if (!data) {
        return "null";
    }
    if (dataSize == sizeof(UInt32) && address.mSelector == kAudioHardwarePropertyDefaultOutputDevice) {
        UInt32 id = 0;
        std::memcpy(&id, data, sizeof id);
        return std::to_string(id);
    }
    if (dataSize == sizeof(Float32)) {
        Float32 level = 0;
        std::memcpy(&level, data, sizeof level);
        return core::shortestFloat(level);
    }
    if (dataSize == sizeof(Float64)) {
        Float64 frames = 0;
        std::memcpy(&frames, data, sizeof frames);
        return core::shortestFloat(frames);
    }
    return "<" + std::to_string(dataSize) + " bytes>";
}

} // namespace

SimulatedAudioHardware::SimulatedAudioHardware(const SystemSpec& spec)
{
    for (const auto& deviceSpec : spec.devices) {
        if (deviceSpec.id) {
            nextID = std::max(nextID, *deviceSpec.id + 1);
        }
    }
    for (const auto& deviceSpec : spec.devices) {
        addDevice(deviceSpec);
    }
    for (const auto& rule : spec.failures) {
        rules.push_back({std::nullopt, rule});
    }
    if (spec.defaultOutputUID) {
        if (const auto* chosen = deviceWithUID(*spec.defaultOutputUID)) {
            defaultOutput = chosen->id;
        }
    }
}

// What a read or write of a property no object answers gets: the object may exist without it.
OSStatus SimulatedAudioHardware::missingStatus(AudioObjectID objectID) const
{
    return objectExists(objectID) ? kAudioHardwareUnknownPropertyError : kAudioHardwareBadObjectError;
}

// ---- the six calls ----

OSStatus SimulatedAudioHardware::getPropertyDataSize(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                                     UInt32, const void*, UInt32& outDataSize)
{
    auto record = CallRecord::of(CallKind::GetPropertyDataSize, objectID, address);
    if (auto injected = begin(record)) {
        return finish(record, *injected);
    }
    auto slot = resolve(objectID, address);
    if (!slot) {
        return finish(record, missingStatus(objectID));
    }
    outDataSize = propertyDataSize(slot->value);
    return finish(record, noErr);
}

OSStatus SimulatedAudioHardware::getPropertyData(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                                 UInt32, const void*, UInt32& ioDataSize, void* outData)
{
    auto record = CallRecord::of(CallKind::GetPropertyData, objectID, address, ioDataSize);
    if (auto injected = begin(record)) {
        return finish(record, *injected);
    }
    auto slot = resolve(objectID, address);
    if (!slot) {
        return finish(record, missingStatus(objectID));
    }
    return finish(record, copyPropertyData(slot->value, ioDataSize, outData));
}

OSStatus SimulatedAudioHardware::setPropertyData(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                                 UInt32, const void*, UInt32 dataSize, const void* data)
{
    auto record = CallRecord::of(CallKind::SetPropertyData, objectID, address, dataSize);
    record.value = describeWrite(address, dataSize, data);
    if (auto injected = begin(record)) {
        return finish(record, *injected);
    }
    auto slot = resolve(objectID, address);
    if (!slot) {
        return finish(record, missingStatus(objectID));
    }
    const OSStatus status = writeSlot(*slot, dataSize, data);
    finish(record, status);
    if (status == noErr) {
        changed();
    }
    return status;
}

bool SimulatedAudioHardware::hasProperty(AudioObjectID objectID, const AudioObjectPropertyAddress& address)
{
    auto record = CallRecord::of(CallKind::HasProperty, objectID, address);
    if (auto injected = begin(record)) {
        finish(record, *injected);
        return false;
    }
    record.answer = resolve(objectID, address).has_value();
    finish(record, noErr);
    return record.answer;
}

OSStatus SimulatedAudioHardware::createAggregateDevice(const PropertyList& description, AudioObjectID& outDeviceID)
{
    auto record = CallRecord::of(CallKind::CreateAggregateDevice);
    record.value = description.describe();
    if (auto injected = begin(record)) {
        return finish(record, *injected);
    }
    const auto* uid = description.find(kAudioAggregateDeviceUIDKey);
    if (!uid || !uid->asString() || uid->asString()->empty()) {
        return finish(record, kAudioHardwareIllegalOperationError);
    }
    outDeviceID = buildAggregate(*uid->asString(), description);
    record.createdID = outDeviceID;
    finish(record, noErr);
    changed();
    return noErr;
}

OSStatus SimulatedAudioHardware::destroyAggregateDevice(AudioObjectID deviceID)
{
    auto record = CallRecord::of(CallKind::DestroyAggregateDevice, deviceID);
    if (auto injected = begin(record)) {
        return finish(record, *injected);
    }
    const auto it =
        std::find_if(deviceList.begin(), deviceList.end(), [deviceID](const SimDevice& d) { return d.id == deviceID; });
    if (it == deviceList.end()) {
        return finish(record, kAudioHardwareBadObjectError);
    }
    if (!it->isAggregate) {
        return finish(record, kAudioHardwareIllegalOperationError);
    }
    for (const auto sub : it->subDevices) {
        subDeviceMap.erase(sub);
    }
    deviceList.erase(it);
    chooseDefaultOutputAfterRemoval(deviceID);
    finish(record, noErr);
    changed();
    return noErr;
}

// ---- failure injection and recording ----

void SimulatedAudioHardware::failNthCallFromNow(std::size_t n, OSStatus status)
{
    failAtCall[callLog.size() + n] = status;
}

void SimulatedAudioHardware::addFailure(std::optional<AudioObjectID> objectID, const FailureRule& rule)
{
    rules.push_back({objectID, rule});
}

std::optional<OSStatus> SimulatedAudioHardware::begin(CallRecord& record)
{
    if (beforeCall) {
        beforeCall(record);
    }
    const std::size_t number = callLog.size() + 1;
    if (const auto it = failAtCall.find(number); it != failAtCall.end()) {
        const OSStatus status = it->second;
        failAtCall.erase(it);
        return status;
    }
    return ruleStatus(record);
}

OSStatus SimulatedAudioHardware::finish(CallRecord record, OSStatus status)
{
    record.status = status;
    callLog.push_back(std::move(record));
    return status;
}

std::optional<OSStatus> SimulatedAudioHardware::ruleStatus(const CallRecord& record) const
{
    for (const auto& [objectID, rule] : rules) {
        const bool objectMatches = !objectID || *objectID == record.objectID;
        const bool addressMatches = (!rule.selector || *rule.selector == record.address.mSelector) &&
                                    (!rule.scope || *rule.scope == record.address.mScope) &&
                                    (!rule.element || *rule.element == record.address.mElement);
        if (rule.call == record.kind && objectMatches && addressMatches) {
            return rule.status;
        }
    }
    return std::nullopt;
}

// ---- the object model ----

bool SimulatedAudioHardware::objectExists(AudioObjectID id) const
{
    return id == kAudioObjectSystemObject || device(id) || subDevice(id);
}

const SimDevice* SimulatedAudioHardware::device(AudioObjectID id) const
{
    const auto it = std::find_if(deviceList.begin(), deviceList.end(), [id](const SimDevice& d) { return d.id == id; });
    return it == deviceList.end() ? nullptr : &*it;
}

SimDevice* SimulatedAudioHardware::findDevice(AudioObjectID id)
{
    return const_cast<SimDevice*>(std::as_const(*this).device(id));
}

const SimDevice* SimulatedAudioHardware::deviceWithUID(const std::string& uid) const
{
    const auto it =
        std::find_if(deviceList.begin(), deviceList.end(), [&uid](const SimDevice& d) { return d.spec.uid == uid; });
    return it == deviceList.end() ? nullptr : &*it;
}

const SimSubDevice* SimulatedAudioHardware::subDevice(AudioObjectID id) const
{
    const auto it = subDeviceMap.find(id);
    return it == subDeviceMap.end() ? nullptr : &it->second;
}

std::optional<SimulatedAudioHardware::Slot> SimulatedAudioHardware::resolve(AudioObjectID id,
                                                                            const AudioObjectPropertyAddress& address)
{
    if (id == kAudioObjectSystemObject) {
        return resolveSystem(address);
    }
    if (auto* dev = findDevice(id)) {
        return resolveDevice(*dev, address);
    }
    if (const auto it = subDeviceMap.find(id); it != subDeviceMap.end()) {
        return resolveSubDevice(it->second, address);
    }
    return std::nullopt;
}

std::optional<SimulatedAudioHardware::Slot>
SimulatedAudioHardware::resolveSystem(const AudioObjectPropertyAddress& address)
{
    if (!isMainElement(address)) {
        return std::nullopt;
    }
    if (matches(kDevices, address)) {
        std::vector<AudioObjectID> ids;
        for (const auto& dev : deviceList) {
            ids.push_back(dev.id);
        }
        return readOnly(std::move(ids));
    }
    if (matches(kDefaultOutputDevice, address)) {
        return settable(defaultOutput, true,
                        [this](const SlotValue& v) { return setDefaultOutput(std::get<UInt32>(v)); });
    }
    return std::nullopt;
}

std::optional<SimulatedAudioHardware::Slot>
SimulatedAudioHardware::resolveDevice(SimDevice& dev, const AudioObjectPropertyAddress& address)
{
    const auto sel = address.mSelector;
    if (sel == kAudioDevicePropertyStreams && isMainElement(address)) {
        return readOnly(streamIDs(dev, address.mScope));
    }
    if (matches(kVolumeScalarOutput, address)) {
        auto& channels = dev.spec.channelVolumes;
        if (address.mElement == kAudioObjectPropertyElementMain) {
            return volumeSlot(&dev.spec.mainVolume);
        }
        return address.mElement <= channels.size() ? volumeSlot(&channels[address.mElement - 1]) : std::nullopt;
    }
    if (!isMainElement(address)) {
        return std::nullopt;
    }
    if (matches(kDeviceUID, address)) {
        return readOnly(dev.spec.uid);
    }
    if (matches(kName, address)) {
        return readOnly(dev.spec.name);
    }
    if (matches(kTransportType, address)) {
        return readOnly(dev.spec.transportType);
    }
    if (matches(kNominalSampleRate, address)) {
        return readOnly(dev.spec.nominalSampleRate);
    }
    if (matches(kVirtualMainVolume, address)) {
        return volumeSlot(&dev.spec.virtualMainVolume);
    }
    if (matches(kActiveSubDeviceList, address) && dev.isAggregate) {
        return readOnly(dev.subDevices);
    }
    return std::nullopt;
}

std::optional<SimulatedAudioHardware::Slot>
SimulatedAudioHardware::resolveSubDevice(SimSubDevice& sub, const AudioObjectPropertyAddress& address)
{
    if (!isMainElement(address)) {
        return std::nullopt;
    }
    if (matches(kDeviceUID, address)) {
        return readOnly(sub.uid);
    }
    if (matches(kExtraLatency, address)) {
        return settable(sub.extraLatencyFrames, true, [&sub](const SlotValue& v) {
            sub.extraLatencyFrames = std::get<Float64>(v);
            return noErr;
        });
    }
    return std::nullopt;
}

std::optional<SimulatedAudioHardware::Slot> SimulatedAudioHardware::volumeSlot(VolumeControlSpec* control)
{
    if (!control->present) {
        return std::nullopt;
    }
    return settable(control->level, control->writable, [control](const SlotValue& v) {
        control->level = std::get<Float32>(v);
        return noErr;
    });
}

std::vector<AudioObjectID> SimulatedAudioHardware::streamIDs(const SimDevice& dev, AudioObjectPropertyScope scope) const
{
    const bool output = scope == kAudioObjectPropertyScopeOutput || scope == kAudioObjectPropertyScopeGlobal;
    const bool input = scope == kAudioObjectPropertyScopeInput || scope == kAudioObjectPropertyScopeGlobal;
    std::vector<AudioObjectID> ids;
    // Stream objects are not modelled; their IDs only need to be distinct.
    const UInt32 base = dev.id * 1000u;
    for (UInt32 i = 0; output && i < dev.spec.outputStreams; ++i) {
        ids.push_back(base + 1 + i);
    }
    for (UInt32 i = 0; input && i < dev.spec.inputStreams; ++i) {
        ids.push_back(base + 501 + i);
    }
    return ids;
}

OSStatus SimulatedAudioHardware::writeSlot(const Slot& slot, UInt32 dataSize, const void* data)
{
    if (!slot.settable) {
        return kAudioHardwareIllegalOperationError;
    }
    return std::visit(
        [&](const auto& current) -> OSStatus {
            using T = std::decay_t<decltype(current)>;
            if constexpr (std::is_same_v<T, UInt32> || std::is_same_v<T, Float32> || std::is_same_v<T, Float64>) {
                if (dataSize != sizeof(T) || !data) {
                    return kAudioHardwareBadPropertySizeError;
                }
                T value{};
                std::memcpy(&value, data, sizeof value);
                return slot.write(SlotValue{value});
            } else {
                return kAudioHardwareIllegalOperationError;
            }
        },
        slot.value);
}

OSStatus SimulatedAudioHardware::setDefaultOutput(AudioObjectID id)
{
    const auto* dev = device(id);
    if (!dev || streamIDs(*dev, kAudioObjectPropertyScopeOutput).empty()) {
        return kAudioHardwareBadDeviceError;
    }
    defaultOutput = id;
    return noErr;
}

AudioObjectID SimulatedAudioHardware::buildAggregate(const std::string& uid, const PropertyList& description)
{
    SimDevice aggregate;
    aggregate.id = nextID++;
    aggregate.isAggregate = true;
    aggregate.composition = description;
    aggregate.spec.uid = uid;
    const auto* name = description.find(kAudioAggregateDeviceNameKey);
    aggregate.spec.name = name && name->asString() ? *name->asString() : std::string();
    aggregate.spec.transportType = kAudioDeviceTransportTypeAggregate;
    aggregate.spec.outputStreams = 0;
    aggregate.spec.nominalSampleRate = 0.0;

    const auto* members = description.find(kAudioAggregateDeviceSubDeviceListKey);
    const auto* list = members ? members->asArray() : nullptr;
    for (const auto& member : list ? *list : PropertyList::Array{}) {
        const auto* memberUID = member.find(kAudioSubDeviceUIDKey);
        const auto* memberDevice = memberUID && memberUID->asString() ? deviceWithUID(*memberUID->asString()) : nullptr;
        // Like the real service, a member that is not present is kept in the composition but
        // has no active sub-device.
        if (!memberDevice || memberDevice->isAggregate) {
            continue;
        }
        const auto* latency = member.find(kAudioSubDeviceOutputLatencyKey);
        SimSubDevice sub{nextID++, aggregate.id, memberDevice->spec.uid,
                         latency && latency->asInteger() ? static_cast<double>(latency->asInteger()->value) : 0.0};
        aggregate.subDevices.push_back(sub.id);
        aggregate.spec.outputStreams += memberDevice->spec.outputStreams;
        if (aggregate.spec.nominalSampleRate <= 0.0) {
            aggregate.spec.nominalSampleRate = memberDevice->spec.nominalSampleRate;
        }
        subDeviceMap.emplace(sub.id, sub);
    }
    deviceList.push_back(std::move(aggregate));
    return deviceList.back().id;
}

void SimulatedAudioHardware::chooseDefaultOutputAfterRemoval(AudioObjectID removed)
{
    if (defaultOutput != removed) {
        return;
    }
    defaultOutput = kAudioObjectUnknown;
    for (const auto& dev : deviceList) {
        if (!streamIDs(dev, kAudioObjectPropertyScopeOutput).empty()) {
            defaultOutput = dev.id;
            return;
        }
    }
}

void SimulatedAudioHardware::changed()
{
    if (onChange) {
        onChange();
    }
}

// ---- devices coming and going ----

AudioObjectID SimulatedAudioHardware::addDevice(const DeviceSpec& spec)
{
    SimDevice dev;
    dev.id = spec.id ? *spec.id : nextID++;
    nextID = std::max(nextID, dev.id + 1);
    dev.spec = spec;
    for (const auto& rule : spec.failures) {
        rules.push_back({dev.id, rule});
    }
    deviceList.push_back(std::move(dev));
    if (defaultOutput == kAudioObjectUnknown && spec.outputStreams > 0) {
        defaultOutput = deviceList.back().id;
    }
    changed();
    return deviceList.back().id;
}

bool SimulatedAudioHardware::removeDevice(const std::string& uid)
{
    const auto it =
        std::find_if(deviceList.begin(), deviceList.end(), [&uid](const SimDevice& d) { return d.spec.uid == uid; });
    if (it == deviceList.end()) {
        return false;
    }
    const AudioObjectID removed = it->id;
    deviceList.erase(it);
    chooseDefaultOutputAfterRemoval(removed);
    changed();
    return true;
}

bool SimulatedAudioHardware::renameDevice(const std::string& uid, const std::string& name)
{
    const auto it =
        std::find_if(deviceList.begin(), deviceList.end(), [&uid](const SimDevice& d) { return d.spec.uid == uid; });
    if (it == deviceList.end()) {
        return false;
    }
    it->spec.name = name;
    changed();
    return true;
}

} // namespace orvanta::sim

#include "PipeWireAudioHardware.h"

#include "hal/PropertyTable.h"
#include "hal/PropertyValue.h"
#include "pulse/AggregateDescription.h"
#include "pulse/LoopbackPlan.h"
#include "pulse/PulseObjects.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orvanta::pipewire {

using namespace orvanta::hal;

namespace {

constexpr double kFallbackRate = 48000.0;

bool matches(const PropertyKey& key, const AudioObjectPropertyAddress& address)
{
    return key.selector == address.mSelector && key.scope == address.mScope &&
           address.mElement == kAudioObjectPropertyElementMain;
}

// A member may declare as much as the delay line can hold the others back for.
bool withinHoldBackRange(double ms)
{
    return std::isfinite(ms) && ms >= 0 && ms * kRate / 1000.0 <= DelayLine::kMaxHoldBackFrames;
}

std::uint32_t framesAtLineRate(double ms)
{
    return static_cast<std::uint32_t>(std::lround(std::max(0.0, ms) * kRate / 1000.0));
}

} // namespace

PipeWireAudioHardware::PipeWireAudioHardware(std::unique_ptr<pulse::PulseConnection> connection,
                                             std::unique_ptr<PipeWireLoop> pipeWire)
    : server(std::move(connection)), session(std::move(pipeWire))
{}

// The node goes before the connection it runs on.
PipeWireAudioHardware::~PipeWireAudioHardware()
{
    node.reset();
}

bool PipeWireAudioHardware::isStackedSink(AudioObjectID objectID)
{
    if (!node || (objectID & ~pulse::PulseAudioHardware::kIndexMask) != pulse::PulseAudioHardware::kSinkBase) {
        return false;
    }
    return connection().withMirror([&](const pulse::PulseMirror& mirror) {
        const auto it = mirror.sinks.find(objectID & pulse::PulseAudioHardware::kIndexMask);
        return it != mirror.sinks.end() && it->second.name == node->name() &&
               it->second.ownerModule == PA_INVALID_INDEX;
    });
}

bool PipeWireAudioHardware::serverAway()
{
    return node && connection().state() != pulse::PulseConnection::State::Ready;
}

std::optional<std::string> PipeWireAudioHardware::memberOf(AudioObjectID objectID) const
{
    if (!node || objectID < kMemberBase || objectID - kMemberBase >= node->memberUIDs().size()) {
        return std::nullopt;
    }
    return node->memberUIDs()[objectID - kMemberBase];
}

double PipeWireAudioHardware::rateOf(const std::string& uid)
{
    return connection().withMirror([&](const pulse::PulseMirror& mirror) {
        const auto* sink = pulse::sinkNamed(mirror, uid);
        return sink && sink->rate > 0 ? static_cast<double>(sink->rate) : kFallbackRate;
    });
}

std::optional<PipeWireAudioHardware::ReadResult>
PipeWireAudioHardware::readStacked(AudioObjectID objectID, const AudioObjectPropertyAddress& address)
{
    if (const auto uid = memberOf(objectID)) {
        if (matches(kDeviceUID, address)) {
            return ReadResult{PropertyValue{*uid}};
        }
        if (matches(kExtraLatency, address)) {
            const auto it = declaredMs.find(*uid);
            const double ms = it == declaredMs.end() ? 0.0 : it->second;
            return ReadResult{PropertyValue{static_cast<Float64>(std::round(ms * rateOf(*uid) / 1000.0))}};
        }
        return ReadResult{kAudioHardwareUnknownPropertyError};
    }
    // While the server is away the node is still listed: it plays again when the server returns,
    // and may be taken down or given new delays before that.
    const bool away = serverAway();
    if (objectID == kAudioObjectSystemObject && matches(kDevices, address) && away) {
        auto devices = server.serverDevices();
        devices.push_back(pulse::PulseAudioHardware::kPlannedBase);
        return ReadResult{PropertyValue{devices}};
    }
    if (objectID == pulse::PulseAudioHardware::kPlannedBase && away && !matches(kActiveSubDeviceList, address)) {
        if (matches(kDeviceUID, address)) {
            return ReadResult{PropertyValue{node->name()}};
        }
        return ReadResult{kAudioHardwareUnknownPropertyError};
    }
    if (matches(kActiveSubDeviceList, address) &&
        (isStackedSink(objectID) || (away && objectID == pulse::PulseAudioHardware::kPlannedBase))) {
        // The members whose sink is there, as an aggregate lists its active sub-devices.
        std::vector<AudioObjectID> active;
        for (std::size_t i = 0; i < node->memberUIDs().size(); ++i) {
            const bool present = away || connection().withMirror([&](const pulse::PulseMirror& mirror) {
                return pulse::sinkNamed(mirror, node->memberUIDs()[i]) != nullptr;
            });
            if (present) {
                active.push_back(kMemberBase + static_cast<AudioObjectID>(i));
            }
        }
        return ReadResult{PropertyValue{active}};
    }
    return std::nullopt;
}

OSStatus PipeWireAudioHardware::getPropertyDataSize(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                                    UInt32 qualifierDataSize, const void* qualifierData,
                                                    UInt32& outDataSize)
{
    const auto value = readStacked(objectID, address);
    if (!value) {
        return server.getPropertyDataSize(objectID, address, qualifierDataSize, qualifierData, outDataSize);
    }
    if (const auto* status = std::get_if<OSStatus>(&*value)) {
        return *status;
    }
    outDataSize = propertyDataSize(std::get<PropertyValue>(*value));
    return noErr;
}

OSStatus PipeWireAudioHardware::getPropertyData(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                                UInt32 qualifierDataSize, const void* qualifierData, UInt32& ioDataSize,
                                                void* outData)
{
    const auto value = readStacked(objectID, address);
    if (!value) {
        return server.getPropertyData(objectID, address, qualifierDataSize, qualifierData, ioDataSize, outData);
    }
    if (const auto* status = std::get_if<OSStatus>(&*value)) {
        return *status;
    }
    return copyPropertyData(std::get<PropertyValue>(*value), ioDataSize, outData);
}

bool PipeWireAudioHardware::hasProperty(AudioObjectID objectID, const AudioObjectPropertyAddress& address)
{
    const auto value = readStacked(objectID, address);
    return value ? std::holds_alternative<PropertyValue>(*value) : server.hasProperty(objectID, address);
}

OSStatus PipeWireAudioHardware::setPropertyData(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                                UInt32 qualifierDataSize, const void* qualifierData, UInt32 dataSize,
                                                const void* data)
{
    const auto uid = memberOf(objectID);
    if (!uid) {
        return server.setPropertyData(objectID, address, qualifierDataSize, qualifierData, dataSize, data);
    }
    if (!matches(kExtraLatency, address)) {
        return kAudioHardwareIllegalOperationError;
    }
    if (dataSize != sizeof(Float64) || !data) {
        return kAudioHardwareBadPropertySizeError;
    }
    Float64 frames = 0;
    std::memcpy(&frames, data, sizeof frames);
    return setDeclared(*uid, frames);
}

OSStatus PipeWireAudioHardware::setDeclared(const std::string& uid, double frames)
{
    const double ms = frames * 1000.0 / rateOf(uid);
    if (!withinHoldBackRange(ms)) {
        return kAudioHardwareIllegalOperationError;
    }
    declaredMs[uid] = ms;
    applyHoldBacks();
    return noErr;
}

void PipeWireAudioHardware::applyHoldBacks()
{
    for (const auto& [uid, ms] : pulse::holdBacks(declaredMs)) {
        node->setHoldBack(uid, framesAtLineRate(ms));
    }
}

OSStatus PipeWireAudioHardware::createAggregateDevice(const PropertyList& description, AudioObjectID& outDeviceID)
{
    const auto composition = pulse::readAggregateDescription(description);
    if (!composition) {
        return kAudioHardwareIllegalOperationError;
    }
    if (connection().state() != pulse::PulseConnection::State::Ready || !session->connected()) {
        return kAudioHardwareNotRunningError;
    }
    for (const auto& member : composition->members) {
        if (!withinHoldBackRange(member.frames * 1000.0 / rateOf(member.uid))) {
            return kAudioHardwareIllegalOperationError;
        }
    }
    destroyNode();
    std::vector<std::string> uids;
    for (const auto& member : composition->members) {
        uids.push_back(member.uid);
    }
    node = std::make_unique<StackedNode>(*session, composition->uid, composition->name, uids);
    for (const auto& member : composition->members) {
        declaredMs[member.uid] = member.frames * 1000.0 / rateOf(member.uid);
    }
    applyHoldBacks();
    if (!node->start() || !connection().waitUntilSinkPresent(composition->uid)) {
        destroyNode();
        return kAudioHardwareUnspecifiedError;
    }
    const auto index = connection().withMirror([&](const pulse::PulseMirror& mirror) {
        const auto* sink = pulse::sinkNamed(mirror, composition->uid);
        return sink ? sink->index : PA_INVALID_INDEX;
    });
    if (index == PA_INVALID_INDEX) {
        destroyNode();
        return kAudioHardwareUnspecifiedError;
    }
    outDeviceID = pulse::PulseAudioHardware::kSinkBase | index;
    return noErr;
}

void PipeWireAudioHardware::destroyNode()
{
    if (!node) {
        return;
    }
    const std::string name = node->name();
    node.reset();
    declaredMs.clear();
    connection().waitUntilSinkGone(name);
}

OSStatus PipeWireAudioHardware::destroyAggregateDevice(AudioObjectID deviceID)
{
    if (deviceID == pulse::PulseAudioHardware::kPlannedBase && serverAway()) {
        destroyNode();
        return noErr;
    }
    if (!isStackedSink(deviceID)) {
        // Not ours: a stacked sink left by the loopback design, or no stacked device at all.
        return server.destroyAggregateDevice(deviceID);
    }
    destroyNode();
    return noErr;
}

} // namespace orvanta::pipewire

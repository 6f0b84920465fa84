#include "PulseAudioHardware.h"

#include "AggregateDescription.h"
#include "ModuleArguments.h"
#include "PulseObjects.h"
#include "hal/PropertyTable.h"
#include "hal/PropertyValue.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace orvanta::pulse {

using namespace orvanta::hal;

namespace {

constexpr double kFallbackRate = 48000.0;
// A replaced loopback keeps playing until its successor has filled its own latency, so the
// change leaves no gap; this margin covers the successor's start-up.
constexpr int kHandOverMarginMs = 100;
// The longest extra latency a member may declare: no speaker is that late, and a loopback asked
// for much more may be refused by the server or hold seconds of sound.
constexpr double kLongestDeclaredMs = 5000.0;

enum class Kind
{
    System,
    Sink,
    Source,
    Loopback,
    Planned,
    Unknown,
};

Kind kindOf(AudioObjectID id)
{
    if (id == kAudioObjectSystemObject) {
        return Kind::System;
    }
    switch (id & ~PulseAudioHardware::kIndexMask) {
    case PulseAudioHardware::kSinkBase:
        return Kind::Sink;
    case PulseAudioHardware::kSourceBase:
        return Kind::Source;
    case PulseAudioHardware::kLoopbackBase:
        return Kind::Loopback;
    case PulseAudioHardware::kPlannedBase:
        return Kind::Planned;
    default:
        return Kind::Unknown;
    }
}

std::uint32_t indexOf(AudioObjectID id)
{
    return id & PulseAudioHardware::kIndexMask;
}

bool matches(const PropertyKey& key, const AudioObjectPropertyAddress& address)
{
    return key.selector == address.mSelector && key.scope == address.mScope &&
           address.mElement == kAudioObjectPropertyElementMain;
}

float levelOf(pa_volume_t volume)
{
    return static_cast<float>(static_cast<double>(volume) / PA_VOLUME_NORM);
}

pa_volume_t volumeOf(float level)
{
    return static_cast<pa_volume_t>(std::lround(static_cast<double>(level) * PA_VOLUME_NORM));
}

using ReadResult = std::variant<PropertyValue, OSStatus>;

std::vector<AudioObjectID> deviceIDs(const PulseMirror& mirror)
{
    std::vector<AudioObjectID> ids;
    for (const auto& [index, sink] : mirror.sinks) {
        ids.push_back(PulseAudioHardware::kSinkBase | index);
    }
    for (const auto& [index, source] : mirror.sources) {
        if (!source.isMonitor) {
            ids.push_back(PulseAudioHardware::kSourceBase | index);
        }
    }
    return ids;
}

ReadResult readSystem(const PulseMirror& mirror, const AudioObjectPropertyAddress& address)
{
    if (matches(kDevices, address)) {
        return deviceIDs(mirror);
    }
    if (matches(kDefaultOutputDevice, address)) {
        const auto* sink = sinkNamed(mirror, mirror.defaultSinkName);
        return sink ? UInt32{PulseAudioHardware::kSinkBase | sink->index} : UInt32{kAudioObjectUnknown};
    }
    return kAudioHardwareUnknownPropertyError;
}

ReadResult readSink(const PulseMirror& mirror, const SinkRecord& sink, const AudioObjectPropertyAddress& address)
{
    const auto id = PulseAudioHardware::kSinkBase | sink.index;
    if (address.mSelector == kAudioDevicePropertyStreams && address.mElement == kAudioObjectPropertyElementMain) {
        return address.mScope == kAudioObjectPropertyScopeInput ? std::vector<AudioObjectID>{}
                                                                : std::vector<AudioObjectID>{id};
    }
    if (kVolumeScalarOutput.selector == address.mSelector && kVolumeScalarOutput.scope == address.mScope &&
        address.mElement >= 1 && address.mElement <= sink.volume.channels) {
        return levelOf(sink.volume.values[address.mElement - 1]);
    }
    if (matches(kDeviceUID, address)) {
        return sink.name;
    }
    if (matches(kName, address)) {
        return sink.description;
    }
    if (matches(kTransportType, address)) {
        return transportType(mirror, sink);
    }
    if (matches(kNominalSampleRate, address)) {
        return static_cast<Float64>(sink.rate);
    }
    if (matches(kVirtualMainVolume, address)) {
        return levelOf(pa_cvolume_max(&sink.volume));
    }
    if (matches(kActiveSubDeviceList, address) && isNullSink(mirror, sink)) {
        std::vector<AudioObjectID> loopbacks;
        for (const auto& loopback : loopbacksFrom(mirror, sink.name)) {
            loopbacks.push_back(loopback.module); // module indices; read() turns them into object IDs
        }
        return loopbacks;
    }
    return kAudioHardwareUnknownPropertyError;
}

ReadResult readSource(const SourceRecord& source, const AudioObjectPropertyAddress& address)
{
    if (address.mSelector == kAudioDevicePropertyStreams && address.mElement == kAudioObjectPropertyElementMain) {
        return address.mScope == kAudioObjectPropertyScopeOutput
                   ? std::vector<AudioObjectID>{}
                   : std::vector<AudioObjectID>{PulseAudioHardware::kSourceBase | source.index};
    }
    if (matches(kDeviceUID, address)) {
        return source.name;
    }
    if (matches(kName, address)) {
        return source.description;
    }
    if (matches(kTransportType, address)) {
        return UInt32{kAudioDeviceTransportTypeUnknown};
    }
    if (matches(kNominalSampleRate, address)) {
        return static_cast<Float64>(source.rate);
    }
    return kAudioHardwareUnknownPropertyError;
}

double rateOf(const PulseMirror& mirror, const std::string& sinkName)
{
    const auto* sink = sinkNamed(mirror, sinkName);
    return sink && sink->rate > 0 ? static_cast<double>(sink->rate) : kFallbackRate;
}

std::string loopbackArguments(const std::string& stackedName, const std::string& member, int latencyMs)
{
    // Pinned to their source and sink: if the member goes away, its loopback goes with it
    // instead of being moved to the default output, which is the stacked sink itself.
    return formatModuleArguments({{"source", stackedName + ".monitor"},
                                  {"sink", member},
                                  {"latency_msec", std::to_string(latencyMs)},
                                  {"source_dont_move", "true"},
                                  {"sink_dont_move", "true"}});
}

// The stacked sink a loopback plays from: its source is that sink's monitor.
std::string stackedNameOf(const Loopback& loopback)
{
    const std::string suffix = ".monitor";
    return loopback.source.ends_with(suffix) ? loopback.source.substr(0, loopback.source.size() - suffix.size())
                                             : loopback.source;
}

std::string nullSinkArguments(const std::string& sinkName, const std::string& label)
{
    return formatModuleArguments(
        {{"sink_name", sinkName}, {"sink_properties", "device.description=\"" + label + "\""}});
}

bool withinLoopbackRange(const AggregateDescription& composition, const PulseMirror& mirror)
{
    return std::all_of(composition.members.begin(), composition.members.end(), [&](const AggregateMember& member) {
        const double ms = member.frames * 1000.0 / rateOf(mirror, member.uid);
        return std::isfinite(ms) && ms >= 0 && ms <= kLongestDeclaredMs;
    });
}

} // namespace

PulseAudioHardware::PulseAudioHardware(std::unique_ptr<PulseConnection> connection) : server(std::move(connection)) {}

PulseAudioHardware::~PulseAudioHardware() = default;

OSStatus PulseAudioHardware::writeFailure() const
{
    return server->state() == PulseConnection::State::Ready ? kAudioHardwareUnspecifiedError
                                                            : kAudioHardwareNotRunningError;
}

AudioObjectID PulseAudioHardware::loopbackID(std::uint32_t module)
{
    const auto [it, added] = loopbackIDs.try_emplace(module, nextLoopbackID);
    if (added) {
        loopbackModules[nextLoopbackID++] = module;
    }
    return it->second;
}

std::optional<std::string> PulseAudioHardware::planned() const
{
    if (declaredByStacked.empty() || server->state() == PulseConnection::State::Ready) {
        return std::nullopt;
    }
    return declaredByStacked.begin()->first;
}

std::optional<std::string> PulseAudioHardware::plannedMember(AudioObjectID objectID) const
{
    const auto stacked = planned();
    if (!stacked || objectID <= kPlannedBase) {
        return std::nullopt;
    }
    const auto& declared = declaredByStacked.at(*stacked);
    const auto position = objectID - kPlannedBase - 1;
    return position < declared.size() ? std::optional{std::next(declared.begin(), position)->first} : std::nullopt;
}

std::vector<AudioObjectID> PulseAudioHardware::serverDevices()
{
    return server->withMirror([](const PulseMirror& mirror) { return deviceIDs(mirror); });
}

std::variant<PropertyValue, OSStatus> PulseAudioHardware::readPlanned(AudioObjectID objectID,
                                                                      const AudioObjectPropertyAddress& address)
{
    const auto stacked = planned();
    if (stacked && objectID == kPlannedBase) {
        if (matches(kDeviceUID, address)) {
            return PropertyValue{*stacked};
        }
        if (matches(kName, address)) {
            return PropertyValue{labels.contains(*stacked) ? labels.at(*stacked) : *stacked};
        }
        if (matches(kActiveSubDeviceList, address)) {
            std::vector<AudioObjectID> members;
            for (std::size_t i = 0; i < declaredByStacked.at(*stacked).size(); ++i) {
                members.push_back(kPlannedBase + 1 + static_cast<AudioObjectID>(i));
            }
            return PropertyValue{members};
        }
        return kAudioHardwareUnknownPropertyError;
    }
    const auto member = plannedMember(objectID);
    if (!member) {
        return kAudioHardwareBadObjectError;
    }
    if (matches(kDeviceUID, address)) {
        return PropertyValue{*member};
    }
    if (matches(kExtraLatency, address)) {
        const double rate = server->withMirror([&](const PulseMirror& mirror) { return rateOf(mirror, *member); });
        return static_cast<Float64>(std::round(declaredByStacked.at(*stacked).at(*member) * rate / 1000.0));
    }
    return kAudioHardwareUnknownPropertyError;
}

std::optional<Loopback> PulseAudioHardware::loopbackFor(AudioObjectID objectID)
{
    const auto module = loopbackModules.find(objectID);
    if (module == loopbackModules.end()) {
        return std::nullopt;
    }
    return server->withMirror([&](const PulseMirror& mirror) -> std::optional<Loopback> {
        const auto it = mirror.modules.find(module->second);
        return it == mirror.modules.end() ? std::nullopt : loopbackOf(it->second);
    });
}

std::variant<PropertyValue, OSStatus> PulseAudioHardware::read(AudioObjectID objectID,
                                                               const AudioObjectPropertyAddress& address)
{
    if (kindOf(objectID) == Kind::Loopback) {
        return readLoopback(objectID, address);
    }
    if (kindOf(objectID) == Kind::Planned) {
        return readPlanned(objectID, address);
    }
    auto value = readDevice(objectID, address);
    if (kindOf(objectID) == Kind::System && matches(kDevices, address) && planned()) {
        std::get<std::vector<AudioObjectID>>(std::get<PropertyValue>(value)).push_back(kPlannedBase);
    }
    if (matches(kActiveSubDeviceList, address) && std::holds_alternative<PropertyValue>(value)) {
        for (auto& module : std::get<std::vector<AudioObjectID>>(std::get<PropertyValue>(value))) {
            module = loopbackID(module);
        }
    }
    return value;
}

std::variant<PropertyValue, OSStatus> PulseAudioHardware::readLoopback(AudioObjectID objectID,
                                                                       const AudioObjectPropertyAddress& address)
{
    const auto loopback = loopbackFor(objectID);
    if (!loopback) {
        return kAudioHardwareBadObjectError;
    }
    if (matches(kDeviceUID, address)) {
        return PropertyValue{loopback->sink};
    }
    if (!matches(kExtraLatency, address)) {
        return kAudioHardwareUnknownPropertyError;
    }
    // Declared latencies may have to be worked out from the running loopbacks first.
    const auto declared = declaredLatencies(stackedNameOf(*loopback));
    const auto it = declared.find(loopback->sink);
    const double ms = it == declared.end() ? 0.0 : it->second;
    const double rate = server->withMirror([&](const PulseMirror& mirror) { return rateOf(mirror, loopback->sink); });
    return static_cast<Float64>(std::round(ms * rate / 1000.0));
}

std::variant<PropertyValue, OSStatus> PulseAudioHardware::readDevice(AudioObjectID objectID,
                                                                     const AudioObjectPropertyAddress& address)
{
    return server->withMirror([&](const PulseMirror& mirror) -> std::variant<PropertyValue, OSStatus> {
        switch (kindOf(objectID)) {
        case Kind::System:
            return readSystem(mirror, address);
        case Kind::Sink:
            if (const auto it = mirror.sinks.find(indexOf(objectID)); it != mirror.sinks.end()) {
                return readSink(mirror, it->second, address);
            }
            break;
        case Kind::Source:
            if (const auto it = mirror.sources.find(indexOf(objectID)); it != mirror.sources.end()) {
                return readSource(it->second, address);
            }
            break;
        case Kind::Loopback:
        case Kind::Planned:
        case Kind::Unknown:
            break;
        }
        return kAudioHardwareBadObjectError;
    });
}

OSStatus PulseAudioHardware::getPropertyDataSize(AudioObjectID objectID, const AudioObjectPropertyAddress& address,
                                                 UInt32, const void*, UInt32& outDataSize)
{
    const auto value = read(objectID, address);
    if (const auto* status = std::get_if<OSStatus>(&value)) {
        return *status;
    }
    outDataSize = propertyDataSize(std::get<PropertyValue>(value));
    return noErr;
}

OSStatus PulseAudioHardware::getPropertyData(AudioObjectID objectID, const AudioObjectPropertyAddress& address, UInt32,
                                             const void*, UInt32& ioDataSize, void* outData)
{
    const auto value = read(objectID, address);
    if (const auto* status = std::get_if<OSStatus>(&value)) {
        return *status;
    }
    return copyPropertyData(std::get<PropertyValue>(value), ioDataSize, outData);
}

bool PulseAudioHardware::hasProperty(AudioObjectID objectID, const AudioObjectPropertyAddress& address)
{
    return std::holds_alternative<PropertyValue>(read(objectID, address));
}

OSStatus PulseAudioHardware::setPropertyData(AudioObjectID objectID, const AudioObjectPropertyAddress& address, UInt32,
                                             const void*, UInt32 dataSize, const void* data)
{
    const auto current = read(objectID, address);
    if (const auto* status = std::get_if<OSStatus>(&current)) {
        return *status;
    }
    if (dataSize != propertyDataSize(std::get<PropertyValue>(current)) || !data) {
        return kAudioHardwareBadPropertySizeError;
    }
    if (kindOf(objectID) == Kind::System && matches(kDefaultOutputDevice, address)) {
        UInt32 device = 0;
        std::memcpy(&device, data, sizeof device);
        return setDefaultOutput(device);
    }
    if (kindOf(objectID) == Kind::Sink &&
        (matches(kVirtualMainVolume, address) || address.mSelector == kAudioDevicePropertyVolumeScalar)) {
        Float32 level = 0;
        std::memcpy(&level, data, sizeof level);
        return setSinkVolume(objectID, address.mElement, level);
    }
    if (matches(kExtraLatency, address)) {
        Float64 frames = 0;
        std::memcpy(&frames, data, sizeof frames);
        if (const auto member = plannedMember(objectID)) {
            return setExtraLatency(*planned(), *member, frames);
        }
        if (const auto loopback = loopbackFor(objectID)) {
            return setExtraLatency(stackedNameOf(*loopback), loopback->sink, frames);
        }
    }
    return kAudioHardwareIllegalOperationError;
}

OSStatus PulseAudioHardware::setDefaultOutput(AudioObjectID deviceID)
{
    const auto name = server->withMirror([&](const PulseMirror& mirror) -> std::optional<std::string> {
        const auto it = mirror.sinks.find(indexOf(deviceID));
        if (kindOf(deviceID) != Kind::Sink || it == mirror.sinks.end()) {
            return std::nullopt;
        }
        return it->second.name;
    });
    if (!name) {
        return kAudioHardwareBadDeviceError;
    }
    return server->setDefaultSink(*name) ? noErr : writeFailure();
}

OSStatus PulseAudioHardware::setSinkVolume(AudioObjectID sinkID, AudioObjectPropertyElement element, float level)
{
    const auto volume = server->withMirror([&](const PulseMirror& mirror) -> std::optional<pa_cvolume> {
        const auto it = mirror.sinks.find(indexOf(sinkID));
        if (it == mirror.sinks.end()) {
            return std::nullopt;
        }
        pa_cvolume result = it->second.volume;
        if (element == kAudioObjectPropertyElementMain) {
            // The main volume is the loudest channel's; the others keep their balance to it.
            if (pa_cvolume_max(&result) == PA_VOLUME_MUTED) {
                pa_cvolume_set(&result, result.channels, volumeOf(level));
            } else {
                pa_cvolume_scale(&result, volumeOf(level));
            }
        } else {
            result.values[element - 1] = volumeOf(level);
        }
        return result;
    });
    if (!volume) {
        return kAudioHardwareBadObjectError;
    }
    return server->setSinkVolume(indexOf(sinkID), *volume) ? noErr : writeFailure();
}

// ---- the stacked device ----

OSStatus PulseAudioHardware::createAggregateDevice(const PropertyList& description, AudioObjectID& outDeviceID)
{
    const auto composition = readAggregateDescription(description);
    if (!composition ||
        !server->withMirror([&](const PulseMirror& mirror) { return withinLoopbackRange(*composition, mirror); })) {
        return kAudioHardwareIllegalOperationError;
    }
    const std::string& sinkName = composition->uid;
    const std::string& label = composition->name;
    const auto& members = composition->members;
    const PulseConnection::Action action(*server);
    // Until it is made, none of it is meant to be on the server.
    server->setRestorePlan({{}, sinkName});
    const auto module = server->loadModule(kNullSinkModule, nullSinkArguments(sinkName, label));
    if (!module || !server->refreshSink(sinkName)) {
        return writeFailure();
    }
    const auto sinkIndex = server->withMirror([&](const PulseMirror& mirror) {
        const auto* sink = sinkNamed(mirror, sinkName);
        return sink ? sink->index : PA_INVALID_INDEX;
    });
    if (sinkIndex == PA_INVALID_INDEX) {
        return writeFailure();
    }

    // A member that is not there yet keeps its place: it gets its loopback when it appears.
    DeclaredLatencies declared;
    for (const auto& member : members) {
        const double rate = server->withMirror([&](const PulseMirror& mirror) { return rateOf(mirror, member.uid); });
        declared[member.uid] = member.frames * 1000.0 / rate;
    }
    const auto plan = loopbackLatencies(declared);
    for (const auto& member : members) {
        const bool present =
            server->withMirror([&](const PulseMirror& mirror) { return sinkNamed(mirror, member.uid) != nullptr; });
        const auto it = plan.find(member.uid);
        if (present && it != plan.end() &&
            !server->loadModule(kLoopbackModule, loopbackArguments(sinkName, member.uid, it->second))) {
            const OSStatus failure = writeFailure();
            unloadStacked(sinkName);
            return failure;
        }
    }
    declaredByStacked[sinkName] = declared;
    labels[sinkName] = label;
    updateRestorePlan(sinkName);
    outDeviceID = kSinkBase | sinkIndex;
    return noErr;
}

OSStatus PulseAudioHardware::destroyAggregateDevice(AudioObjectID deviceID)
{
    if (const auto stacked = planned(); stacked && deviceID == kPlannedBase) {
        // Forgotten: it is not rebuilt when the server returns.
        declaredByStacked.erase(*stacked);
        labels.erase(*stacked);
        handOvers.clear();
        server->setRestorePlan({{}, *stacked});
        return noErr;
    }
    struct Target
    {
        std::string name;
        std::uint32_t ownerModule;
        std::vector<Loopback> loopbacks;
    };
    const auto target = server->withMirror([&](const PulseMirror& mirror) -> std::variant<Target, OSStatus> {
        const auto it = mirror.sinks.find(indexOf(deviceID));
        if (kindOf(deviceID) != Kind::Sink || it == mirror.sinks.end()) {
            return kAudioHardwareBadObjectError;
        }
        if (!isNullSink(mirror, it->second)) {
            return kAudioHardwareIllegalOperationError;
        }
        return Target{it->second.name, it->second.ownerModule, loopbacksFrom(mirror, it->second.name)};
    });
    if (const auto* status = std::get_if<OSStatus>(&target)) {
        return *status;
    }
    const auto& [name, ownerModule, loopbacks] = std::get<Target>(target);
    const PulseConnection::Action action(*server);
    server->setRestorePlan({{}, name});
    server->finishHandOvers();
    for (const auto& loopback : loopbacks) {
        server->unloadModule(loopback.module);
    }
    declaredByStacked.erase(name);
    labels.erase(name);
    handOvers.clear();
    if (!server->unloadModule(ownerModule)) {
        return writeFailure();
    }
    server->waitUntilSinkGone(name);
    return noErr;
}

// Takes away what a failed creation left: the stacked sink's loopbacks and the sink itself.
void PulseAudioHardware::unloadStacked(const std::string& sinkName)
{
    const auto [loopbacks, owner] = server->withMirror([&](const PulseMirror& mirror) {
        const auto* sink = sinkNamed(mirror, sinkName);
        return std::make_pair(loopbacksFrom(mirror, sinkName), sink ? sink->ownerModule : PA_INVALID_INDEX);
    });
    for (const auto& loopback : loopbacks) {
        server->unloadModule(loopback.module);
    }
    if (owner != PA_INVALID_INDEX) {
        server->unloadModule(owner);
    }
}

DeclaredLatencies PulseAudioHardware::declaredLatencies(const std::string& stackedName)
{
    if (const auto it = declaredByStacked.find(stackedName); it != declaredByStacked.end()) {
        return it->second;
    }
    // Made by an earlier run: what the running loopbacks stand for.
    LoopbackLatencies running;
    server->withMirror([&](const PulseMirror& mirror) {
        for (const auto& loopback : loopbacksFrom(mirror, stackedName)) {
            running[loopback.sink] = loopback.latencyMs;
        }
        return 0;
    });
    return declaredFromLoopbacks(running);
}

OSStatus PulseAudioHardware::setExtraLatency(const std::string& stacked, const std::string& member, double frames)
{
    auto declared = declaredLatencies(stacked);
    const double rate = server->withMirror([&](const PulseMirror& mirror) { return rateOf(mirror, member); });
    const double ms = frames * 1000.0 / rate;
    if (!std::isfinite(ms) || ms < 0 || ms > kLongestDeclaredMs) {
        return kAudioHardwareIllegalOperationError;
    }
    declared[member] = ms;
    const PulseConnection::Action action(*server);
    return retime(stacked, declared);
}

// Every member whose loopback latency changes gets a new loopback first; the old one is
// unloaded once the new one plays, so the sound never stops. A member has at most one loopback
// waiting to take over: a newer change drops a successor that has not taken over yet and keeps
// the one that plays until the newest successor does. While the server is away, only the plan
// changes.
OSStatus PulseAudioHardware::retime(const std::string& stackedName, const DeclaredLatencies& declared)
{
    const auto plan = loopbackLatencies(declared);
    const auto running =
        server->withMirror([&](const PulseMirror& mirror) { return loopbacksFrom(mirror, stackedName); });
    for (const auto& loopback : running) {
        const auto it = plan.find(loopback.sink);
        if (it == plan.end() || it->second == loopback.latencyMs) {
            continue;
        }
        if (!server->loadModule(kLoopbackModule, loopbackArguments(stackedName, loopback.sink, it->second))) {
            return writeFailure();
        }
        const auto takeOver = std::chrono::milliseconds(it->second + kHandOverMarginMs);
        const auto playing = handOvers.find(loopback.sink);
        if (playing != handOvers.end() && server->rescheduleUnload(playing->second, takeOver)) {
            server->unloadModule(loopback.module);
        } else {
            server->unloadModuleLater(loopback.module, takeOver);
            handOvers[loopback.sink] = loopback.module;
        }
    }
    declaredByStacked[stackedName] = declared;
    updateRestorePlan(stackedName);
    return noErr;
}

// Should the server restart while the stacked device plays, it is rebuilt as it is now.
void PulseAudioHardware::updateRestorePlan(const std::string& stackedName)
{
    const auto label = labels.find(stackedName);
    PulseConnection::RestorePlan plan;
    plan.modules.emplace_back(kNullSinkModule,
                              nullSinkArguments(stackedName, label == labels.end() ? stackedName : label->second));
    for (const auto& [member, latencyMs] : loopbackLatencies(declaredByStacked[stackedName])) {
        plan.modules.emplace_back(kLoopbackModule, loopbackArguments(stackedName, member, latencyMs));
    }
    plan.defaultSink = stackedName;
    server->setRestorePlan(std::move(plan));
}

} // namespace orvanta::pulse

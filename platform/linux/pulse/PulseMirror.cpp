#include "PulseMirror.h"

namespace orvanta::pulse {

namespace {

std::string property(const pa_proplist* list, const char* key)
{
    const char* value = list ? pa_proplist_gets(list, key) : nullptr;
    return value ? std::string(value) : std::string();
}

std::string text(const char* value)
{
    return value ? std::string(value) : std::string();
}

// A removal that came before the object's info was known; the info it is waiting for is dropped.
template <typename Records>
bool removedEarlier(std::set<std::uint32_t>& pending, const Records& records, std::uint32_t index)
{
    return !records.contains(index) && pending.erase(index) > 0;
}

// The fields sinks and sources share.
template <typename Record, typename Info> void fillDevice(Record& record, const Info& info)
{
    record.index = info.index;
    record.name = text(info.name);
    record.description = text(info.description);
    record.rate = info.sample_spec.rate;
}

template <typename Records> void removeRecord(std::set<std::uint32_t>& pending, Records& records, std::uint32_t index)
{
    if (records.erase(index) == 0) {
        pending.insert(index);
    }
}

} // namespace

void PulseMirror::update(const pa_sink_info& info)
{
    if (removedEarlier(pendingSinkRemovals, sinks, info.index)) {
        return;
    }
    auto& sink = sinks[info.index];
    fillDevice(sink, info);
    sink.volume = info.volume;
    sink.channelMap = info.channel_map;
    sink.ownerModule = info.owner_module;
    sink.bus = property(info.proplist, PA_PROP_DEVICE_BUS);
    sink.api = property(info.proplist, PA_PROP_DEVICE_API);
    sink.bluetoothProfile = property(info.proplist, "api.bluez5.profile");
    sink.hardwareVolume = (info.flags & PA_SINK_HW_VOLUME_CTRL) != 0;
}

void PulseMirror::update(const pa_source_info& info)
{
    if (removedEarlier(pendingSourceRemovals, sources, info.index)) {
        return;
    }
    auto& source = sources[info.index];
    fillDevice(source, info);
    source.isMonitor = info.monitor_of_sink != PA_INVALID_INDEX;
}

void PulseMirror::update(const pa_module_info& info)
{
    addModule({info.index, text(info.name), text(info.argument)});
}

void PulseMirror::addModule(const ModuleRecord& module)
{
    if (!removedEarlier(pendingModuleRemovals, modules, module.index)) {
        modules[module.index] = module;
    }
}

void PulseMirror::announceNew(pa_subscription_event_type_t facility, std::uint32_t index)
{
    switch (facility) {
    case PA_SUBSCRIPTION_EVENT_SINK:
        pendingSinkRemovals.erase(index);
        break;
    case PA_SUBSCRIPTION_EVENT_SOURCE:
        pendingSourceRemovals.erase(index);
        break;
    case PA_SUBSCRIPTION_EVENT_MODULE:
        pendingModuleRemovals.erase(index);
        break;
    default:
        break;
    }
}

void PulseMirror::removeSink(std::uint32_t index)
{
    removeRecord(pendingSinkRemovals, sinks, index);
}

void PulseMirror::removeSource(std::uint32_t index)
{
    removeRecord(pendingSourceRemovals, sources, index);
}

void PulseMirror::removeModule(std::uint32_t index)
{
    retiringModules.erase(index);
    removeRecord(pendingModuleRemovals, modules, index);
}

void PulseMirror::clear()
{
    *this = PulseMirror();
}

} // namespace orvanta::pulse

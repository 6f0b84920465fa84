#pragma once

// The sound server's objects as last reported, kept up to date by subscription so that reads
// cost no round trip. Keyed by the server's index. Only touched with the main loop's lock held.

#include <pulse/pulseaudio.h>

#include <cstdint>
#include <map>
#include <set>
#include <string>

namespace orvanta::pulse {

struct SinkRecord
{
    std::uint32_t index = PA_INVALID_INDEX;
    std::string name;
    std::string description;
    std::uint32_t rate = 0;
    pa_cvolume volume{};
    pa_channel_map channelMap{};
    std::uint32_t ownerModule = PA_INVALID_INDEX;
    std::string bus; // "bluetooth", "usb", "pci", ... or empty
    std::string api; // "bluez5", "alsa", ... or empty
    std::string bluetoothProfile;
    bool hardwareVolume = false;
};

struct SourceRecord
{
    std::uint32_t index = PA_INVALID_INDEX;
    std::string name;
    std::string description;
    std::uint32_t rate = 0;
    bool isMonitor = false;
};

struct ModuleRecord
{
    std::uint32_t index = PA_INVALID_INDEX;
    std::string name;
    std::string argument;
};

class PulseMirror
{
public:
    void update(const pa_sink_info& info);
    void update(const pa_source_info& info);
    void update(const pa_module_info& info);
    void addModule(const ModuleRecord& module);
    // The server announced a new object at this index: a removal still pending for an earlier
    // object there is void.
    void announceNew(pa_subscription_event_type_t facility, std::uint32_t index);
    void removeSink(std::uint32_t index);
    void removeSource(std::uint32_t index);
    void removeModule(std::uint32_t index);
    void clear();

    std::map<std::uint32_t, SinkRecord> sinks;
    std::map<std::uint32_t, SourceRecord> sources;
    std::map<std::uint32_t, ModuleRecord> modules;
    std::string defaultSinkName;
    std::string defaultSourceName;
    std::string serverName; // "pulseaudio", or "PulseAudio (on PipeWire 0.3.65)"
    // Modules being replaced: they still play for a moment but no longer count.
    std::set<std::uint32_t> retiringModules;

private:
    // Removals of objects whose info had not arrived yet: the info that arrives next for that
    // index is of the removed object, and is dropped. Each is used once.
    std::set<std::uint32_t> pendingSinkRemovals;
    std::set<std::uint32_t> pendingSourceRemovals;
    std::set<std::uint32_t> pendingModuleRemovals;
};

} // namespace orvanta::pulse

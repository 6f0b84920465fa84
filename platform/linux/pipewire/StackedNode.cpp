#include "StackedNode.h"

#include "LatencyReport.h"
#include "Pods.h"

#include <pipewire/extensions/metadata.h>

#include "PipeWireApi.h"
#include <algorithm>
#include <array>
#include <unistd.h>

namespace orvanta::pipewire {

namespace {

const pw_stream_events kInputEvents = [] {
    pw_stream_events events{};
    events.version = PW_VERSION_STREAM_EVENTS;
    return events;
}();

const pw_registry_events kRegistryEvents = [] {
    pw_registry_events events{};
    events.version = PW_VERSION_REGISTRY_EVENTS;
    return events;
}();

} // namespace

StackedNode::StackedNode(PipeWireLoop& owner, std::string name, std::string description,
                         const std::vector<std::string>& memberUIDs)
    : session(owner), nodeName(std::move(name)), nodeDescription(std::move(description)), uids(memberUIDs),
      group("orvanta-stacked-" + std::to_string(::getpid()))
{
    for (const auto& uid : uids) {
        // A stream that fails is let go by the watch, never from inside its own callback.
        members.push_back(std::make_unique<MemberStream>(cycle, uid, [this] { publishLatency(); }));
    }
}

StackedNode::~StackedNode()
{
    PipeWireLoop::Lock lock(session);
    if (watchTimer) {
        pw_loop_destroy_source(pw_thread_loop_get_loop(session.threadLoop()), watchTimer);
    }
    tearDown();
}

bool StackedNode::start()
{
    PipeWireLoop::Lock lock(session);
    if (!session.connected() || !connectInput()) {
        return false;
    }
    watchRegistry();
    auto* loop = pw_thread_loop_get_loop(session.threadLoop());
    watchTimer = pw_loop_add_timer(loop, &StackedNode::onWatch, this);
    timespec interval{0, kWatchIntervalMs * static_cast<long>(SPA_NSEC_PER_MSEC)};
    pw_loop_update_timer(loop, watchTimer, &interval, &interval, false);
    return true;
}

bool StackedNode::connectInput()
{
    published.reset();
    pw_properties* props =
        pw_properties_new(PW_KEY_MEDIA_CLASS, "Audio/Sink", PW_KEY_NODE_NAME, nodeName.c_str(), PW_KEY_NODE_DESCRIPTION,
                          nodeDescription.c_str(), PW_KEY_NODE_GROUP, group.c_str(), PW_KEY_NODE_LINK_GROUP,
                          group.c_str(), PW_KEY_AUDIO_CHANNELS, "2", "audio.position", "FL,FR", nullptr);
    input = pw_stream_new(session.core(), "Orvanta", props);
    if (!input) {
        return false;
    }
    static pw_stream_events events = kInputEvents;
    events.process = &StackedNode::onInputProcess;
    pw_stream_add_listener(input, &inputListener, &events, this);
    std::array<std::uint8_t, 1024> buffer{};
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(buffer.data(), buffer.size());
    const spa_pod* params[] = {stereoFormat(builder)};
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                                    PW_STREAM_FLAG_RT_PROCESS);
    if (pw_stream_connect(input, PW_DIRECTION_INPUT, PW_ID_ANY, flags, params, 1) < 0) {
        spa_hook_remove(&inputListener);
        pw_stream_destroy(input);
        input = nullptr;
        return false;
    }
    return true;
}

void StackedNode::watchRegistry()
{
    sinkNodes.clear();
    registry = pw_core_get_registry(session.core(), PW_VERSION_REGISTRY, 0);
    static pw_registry_events events = kRegistryEvents;
    events.global = &StackedNode::onGlobal;
    events.global_remove = &StackedNode::onGlobalRemove;
    pw_registry_add_listener(registry, &registryListener, &events, this);
}

void StackedNode::tearDown()
{
    auto* dataLoop = pw_context_get_data_loop(session.context());
    for (auto& stream : members) {
        stream->detach(dataLoop);
    }
    if (input) {
        spa_hook_remove(&inputListener);
        pw_stream_destroy(input);
        input = nullptr;
    }
    if (registry) {
        spa_hook_remove(&registryListener);
        pw_proxy_destroy(reinterpret_cast<pw_proxy*>(registry));
        registry = nullptr;
    }
}

MemberStream* StackedNode::member(const std::string& uid) const
{
    const auto it = std::find_if(members.begin(), members.end(), [&](const auto& m) { return m->uid() == uid; });
    return it == members.end() ? nullptr : it->get();
}

void StackedNode::setHoldBack(const std::string& uid, std::uint32_t frames)
{
    PipeWireLoop::Lock lock(session);
    if (auto* stream = member(uid)) {
        stream->tap().setHoldBack(frames);
        // Told to players at the next watch: a dragged slider would otherwise make every
        // player's stream recompute its latency hundreds of times a second.
    }
}

std::uint32_t StackedNode::holdBack(const std::string& uid) const
{
    PipeWireLoop::Lock lock(session);
    const auto* stream = member(uid);
    return stream ? stream->tap().targetHoldBack() : 0;
}

bool StackedNode::memberLinked(const std::string& uid) const
{
    PipeWireLoop::Lock lock(session);
    const auto* stream = member(uid);
    return stream && stream->live() != nullptr;
}

StackedNode::Counts StackedNode::counts() const
{
    Counts counted{cycles.load(std::memory_order_relaxed), shortCycles.load(std::memory_order_relaxed), 0};
    PipeWireLoop::Lock lock(session);
    for (const auto& stream : members) {
        counted.skippedRenders += stream->skippedRenders();
    }
    return counted;
}

long StackedNode::dataThreadId() const
{
    long id = 0;
    const auto record = [](spa_loop*, bool, std::uint32_t, const void*, std::size_t, void* result) {
        *static_cast<long*>(result) = static_cast<long>(::gettid());
        return 0;
    };
    pw_data_loop_invoke(pw_context_get_data_loop(session.context()), record, 0, nullptr, 0, true, &id);
    return id;
}

void StackedNode::playProbe(const ProbeScript* script)
{
    cycle.probe.arm(script);
}

void StackedNode::stopProbe()
{
    PipeWireLoop::Lock lock(session);
    cycle.probe.arm(nullptr);
    waitForDataThread(pw_context_get_data_loop(session.context()));
}

// On the loop thread: members that lost their stream let go of it, and members whose sink is
// there get a new one. A daemon that went away is reconnected and the node put back.
void StackedNode::looksAfterMembers()
{
    if (!session.connected()) {
        if (wasConnected) {
            tearDown();
            wasConnected = false;
        }
        if (!session.reconnect() || !connectInput()) {
            return;
        }
        watchRegistry();
        wasConnected = true;
    }
    auto* dataLoop = pw_context_get_data_loop(session.context());
    for (auto& stream : members) {
        if (stream->failed()) {
            stream->detach(dataLoop);
        }
        const bool sinkThere = std::any_of(sinkNodes.begin(), sinkNodes.end(),
                                           [&](const auto& node) { return node.second == stream->uid(); });
        if (!stream->attached() && sinkThere) {
            stream->attach(session.core(), group);
        }
    }
    publishLatency();
}

void StackedNode::publishLatency()
{
    std::vector<MemberLatency> latencies;
    for (const auto& stream : members) {
        if (stream->attached()) {
            latencies.push_back({stream->downstreamLatency(), stream->tap().targetHoldBack()});
        }
    }
    auto info = reportedLatency(latencies);
    if (!info || !input || (published && spa_latency_info_compare(&*published, &*info) == 0)) {
        return;
    }
    published = info;
    std::array<std::uint8_t, 1024> buffer{};
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(buffer.data(), buffer.size());
    const spa_pod* params[] = {latencyParam(builder, *info)};
    pw_stream_update_params(input, params, 1);
}

// ---- callbacks ----

// How many frames this cycle lasts at the line's rate, from how far the graph's clock moved.
std::uint32_t StackedNode::cycleLength(const pw_time& time)
{
    std::uint32_t frames = 0;
    if (lastTicks != 0 && time.ticks > lastTicks && time.rate.denom != 0) {
        const auto ticks = time.ticks - lastTicks;
        frames = static_cast<std::uint32_t>(
            std::min<std::uint64_t>(ticks * kRate * time.rate.num / time.rate.denom, DelayLine::kCapacityFrames / 4));
    }
    lastTicks = time.ticks;
    return frames;
}

// Every cycle moves the line on by the cycle's length, with what players sent or, where they
// sent less (a player that pauses, ends or falls behind), with silence: the held-back members
// keep playing what they still owe, in time.
void StackedNode::onInputProcess(void* self)
{
    auto* node = static_cast<StackedNode*>(self);
    pw_time time{};
    const std::uint32_t length =
        pw_stream_get_time_n(node->input, &time, sizeof time) == 0 ? node->cycleLength(time) : 0;
    std::uint32_t frames = 0;
    if (pw_buffer* buffer = pw_stream_dequeue_buffer(node->input)) {
        const spa_data& data = buffer->buffer->datas[0];
        const std::uint32_t stride = kChannels * sizeof(float);
        const std::uint32_t offset = std::min(data.chunk->offset, data.maxsize);
        frames = std::min(data.chunk->size, data.maxsize - offset) / stride;
        if (data.data) {
            node->cycle.line.write(static_cast<const float*>(data.data) + offset / sizeof(float), frames);
        } else {
            node->cycle.line.writeSilence(frames);
        }
        pw_stream_queue_buffer(node->input, buffer);
    }
    if (frames < length) {
        node->cycle.line.writeSilence(length - frames);
        frames = length;
        node->shortCycles.fetch_add(1, std::memory_order_relaxed);
    }
    node->cycles.fetch_add(1, std::memory_order_relaxed);
    node->cycle.frames = frames;
    node->cycle.probe.beginCycle(node->cycle.start());
    for (const auto& stream : node->members) {
        if (auto* live = stream->live()) {
            pw_stream_trigger_process(live);
        }
    }
}

void StackedNode::onGlobal(void* self, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                           const spa_dict* props)
{
    auto* node = static_cast<StackedNode*>(self);
    if (std::string_view(type) != PW_TYPE_INTERFACE_Node || !props) {
        return;
    }
    const char* mediaClass = spa_dict_lookup(props, PW_KEY_MEDIA_CLASS);
    const char* name = spa_dict_lookup(props, PW_KEY_NODE_NAME);
    if (mediaClass && name && std::string_view(mediaClass) == "Audio/Sink") {
        node->sinkNodes[id] = name;
        node->looksAfterMembers();
    }
}

void StackedNode::onGlobalRemove(void* self, std::uint32_t id)
{
    auto* node = static_cast<StackedNode*>(self);
    const auto it = node->sinkNodes.find(id);
    if (it == node->sinkNodes.end()) {
        return;
    }
    const std::string gone = it->second;
    node->sinkNodes.erase(it);
    if (auto* stream = node->member(gone)) {
        stream->detach(pw_context_get_data_loop(node->session.context()));
    }
}

void StackedNode::onWatch(void* self, std::uint64_t)
{
    auto* node = static_cast<StackedNode*>(self);
    node->looksAfterMembers();
}

} // namespace orvanta::pipewire

#include "MemberStream.h"

#include "Pods.h"

#include "PipeWireApi.h"
#include <algorithm>
#include <array>
#include <cstdint>

namespace orvanta::pipewire {

namespace {

const pw_stream_events kEvents = [] {
    pw_stream_events events{};
    events.version = PW_VERSION_STREAM_EVENTS;
    return events;
}();

int barrier(spa_loop*, bool, std::uint32_t, const void*, std::size_t, void*)
{
    return 0;
}

} // namespace

void waitForDataThread(pw_data_loop* dataLoop)
{
    pw_data_loop_invoke(dataLoop, barrier, 0, nullptr, 0, true, nullptr);
}

MemberStream::MemberStream(const Cycle& source, std::string uid, std::function<void()> onChange)
    : cycle(source), memberUID(std::move(uid)), changed(std::move(onChange))
{}

bool MemberStream::attach(pw_core* core, const std::string& group)
{
    pw_properties* props = pw_properties_new(
        PW_KEY_MEDIA_TYPE, "Audio", PW_KEY_MEDIA_CATEGORY, "Playback", PW_KEY_NODE_NAME,
        ("com.quellon.stacked.member." + memberUID).c_str(), PW_KEY_NODE_DESCRIPTION,
        ("Orvanta → " + memberUID).c_str(), PW_KEY_TARGET_OBJECT, memberUID.c_str(), "node.dont-reconnect", "true",
        PW_KEY_NODE_GROUP, group.c_str(), PW_KEY_NODE_LINK_GROUP, group.c_str(), "stream.dont-remix", "true", nullptr);
    stream = pw_stream_new(core, "Orvanta member", props);
    if (!stream) {
        return false;
    }
    static pw_stream_events events = kEvents;
    events.process = &MemberStream::onProcess;
    events.state_changed = &MemberStream::onStateChanged;
    events.param_changed = &MemberStream::onParamChanged;
    pw_stream_add_listener(stream, &listener, &events, this);
    std::array<std::uint8_t, 1024> buffer{};
    spa_pod_builder builder = SPA_POD_BUILDER_INIT(buffer.data(), buffer.size());
    const spa_pod* params[] = {stereoFormat(builder)};
    const auto flags = static_cast<pw_stream_flags>(PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS |
                                                    PW_STREAM_FLAG_RT_PROCESS | PW_STREAM_FLAG_TRIGGER);
    streamFailed = false;
    downstream.reset();
    if (pw_stream_connect(stream, PW_DIRECTION_OUTPUT, PW_ID_ANY, flags, params, 1) < 0) {
        detach(nullptr);
        return false;
    }
    return true;
}

void MemberStream::detach(pw_data_loop* dataLoop)
{
    if (!stream) {
        return;
    }
    liveStream.store(nullptr, std::memory_order_release);
    // Once a call has run on the data thread, no cycle there still holds the old pointer.
    if (dataLoop) {
        waitForDataThread(dataLoop);
    }
    spa_hook_remove(&listener);
    pw_stream_destroy(stream);
    stream = nullptr;
    downstream.reset();
}

void MemberStream::onProcess(void* self)
{
    auto* member = static_cast<MemberStream*>(self);
    // A buffer still waiting means the sink skipped a cycle; another one now would make this
    // member a cycle late for good. It loses this cycle instead and stays in step.
    pw_time time{};
    if (pw_stream_get_time_n(member->stream, &time, sizeof time) == 0 && time.queued_buffers > 0) {
        member->skipped.fetch_add(1, std::memory_order_relaxed);
        return;
    }
    pw_buffer* buffer = pw_stream_dequeue_buffer(member->stream);
    if (!buffer) {
        return;
    }
    spa_data& data = buffer->buffer->datas[0];
    const std::uint32_t stride = kChannels * sizeof(float);
    const std::uint32_t frames = std::min(member->cycle.frames, data.maxsize / stride);
    if (data.data) {
        auto* out = static_cast<float*>(data.data);
        member->delayTap.render(member->cycle.line, out, frames);
        member->cycle.probe.render(member->memberUID, member->cycle.start(), out, frames);
    }
    data.chunk->offset = 0;
    data.chunk->stride = static_cast<std::int32_t>(stride);
    data.chunk->size = data.data ? frames * stride : 0;
    pw_stream_queue_buffer(member->stream, buffer);
}

void MemberStream::onStateChanged(void* self, pw_stream_state, pw_stream_state state, const char*)
{
    auto* member = static_cast<MemberStream*>(self);
    member->liveStream.store(state == PW_STREAM_STATE_STREAMING ? member->stream : nullptr, std::memory_order_release);
    if (state == PW_STREAM_STATE_ERROR || state == PW_STREAM_STATE_UNCONNECTED) {
        member->streamFailed = true;
        member->changed();
    }
}

void MemberStream::onParamChanged(void* self, std::uint32_t id, const spa_pod* param)
{
    auto* member = static_cast<MemberStream*>(self);
    spa_latency_info info{};
    // A playback stream hears of what lies downstream as latency of the input direction.
    if (id != SPA_PARAM_Latency || !param || spa_latency_parse(param, &info) < 0 ||
        info.direction != SPA_DIRECTION_INPUT) {
        return;
    }
    member->downstream = info;
    member->changed();
}

} // namespace orvanta::pipewire

#pragma once

// One member of the stacked device: a playback stream pinned to that member's sink, filled in
// the same processing cycle as the stacked device's input, from the shared delay line at this
// member's hold-back. Built and torn down on PipeWire's loop thread, the loop's lock held; the
// data thread only triggers it (through live()) and renders into it.

#include "DelayLine.h"
#include "ProbeCue.h"

#include <pipewire/pipewire.h>
#include <spa/param/latency-utils.h>

#include <atomic>
#include <functional>
#include <optional>
#include <string>

namespace orvanta::pipewire {

// What every member reads in a cycle: the line, how many frames the cycle brought, and the
// test sounds of a measurement, if one runs.
struct Cycle
{
    DelayLine line;
    std::uint32_t frames = 0;
    ProbeCue probe;

    // The line position of the cycle's first frame.
    std::uint64_t start() const { return line.written() - frames; }
};

// Returns once the data thread has finished whatever cycle it was in; the loop's lock held.
void waitForDataThread(pw_data_loop* dataLoop);

class MemberStream
{
public:
    MemberStream(const Cycle& cycle, std::string uid, std::function<void()> changed);
    // The owner detaches the stream first, with the loop's lock held.
    ~MemberStream() = default;
    MemberStream(const MemberStream&) = delete;
    MemberStream& operator=(const MemberStream&) = delete;

    const std::string& uid() const { return memberUID; }
    DelayTap& tap() { return delayTap; }
    const DelayTap& tap() const { return delayTap; }

    // Connects a stream to the member's sink, tagged with the stacked device's group so that
    // both run from one clock and in one cycle.
    bool attach(pw_core* core, const std::string& group);
    // Stops the data thread from reaching the stream, then destroys it.
    void detach(pw_data_loop* dataLoop);
    bool attached() const { return stream != nullptr; }
    // The session manager gave up on the stream (its sink went away): detach and retry later.
    bool failed() const { return streamFailed; }

    // The stream the data thread may trigger this cycle, or null.
    pw_stream* live() const { return liveStream.load(std::memory_order_acquire); }
    // Cycles this member let pass because its sink had not taken the last buffer yet.
    std::uint64_t skippedRenders() const { return skipped.load(std::memory_order_relaxed); }
    // The member sink's own latency, once the link has told it.
    const std::optional<spa_latency_info>& downstreamLatency() const { return downstream; }

private:
    static void onProcess(void* self);
    static void onStateChanged(void* self, pw_stream_state old, pw_stream_state state, const char* error);
    static void onParamChanged(void* self, std::uint32_t id, const spa_pod* param);

    const Cycle& cycle;
    std::string memberUID;
    std::function<void()> changed;
    DelayTap delayTap;
    pw_stream* stream = nullptr;
    spa_hook listener{};
    std::atomic<pw_stream*> liveStream{nullptr};
    std::atomic<std::uint64_t> skipped{0};
    std::optional<spa_latency_info> downstream;
    bool streamFailed = false;
};

} // namespace orvanta::pipewire

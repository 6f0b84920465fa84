#pragma once

// The stacked device as a node of Orvanta's own: a sink (class Audio/Sink) that players see like
// any other, and one playback stream per member. Its input is written into one delay line and
// every member is read from it at that member's hold-back in the same processing cycle, so the
// members' offset is exact from the first sample. Members whose sink is missing are linked as
// soon as a sink with their UID appears again. It tells players its latency: see
// LatencyReport.h. It lives as long as this object: a process that ends takes it along.
//
// All calls come from one thread (the program's main thread); each takes the loop's lock.

#include "MemberStream.h"
#include "PipeWireLoop.h"

#include <pipewire/pipewire.h>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orvanta::pipewire {

class StackedNode
{
public:
    // How often members without a stream are looked after, and a lost daemon retried.
    static constexpr int kWatchIntervalMs = 250;

    StackedNode(PipeWireLoop& session, std::string name, std::string description,
                const std::vector<std::string>& memberUIDs);
    ~StackedNode();
    StackedNode(const StackedNode&) = delete;
    StackedNode& operator=(const StackedNode&) = delete;

    // Puts the node on the graph; false when PipeWire refuses.
    bool start();
    const std::string& name() const { return nodeName; }
    const std::vector<std::string>& memberUIDs() const { return uids; }
    // The hold-back of a member, in frames at the delay line's rate; changed live, crossfaded.
    void setHoldBack(const std::string& uid, std::uint32_t frames);
    std::uint32_t holdBack(const std::string& uid) const;
    // Whether a member's stream is connected to its sink right now.
    bool memberLinked(const std::string& uid) const;

    // What the data thread has seen since the node started.
    struct Counts
    {
        std::uint64_t cycles = 0;
        std::uint64_t shortCycles = 0;    // the input brought less than the cycle: filled with silence
        std::uint64_t skippedRenders = 0; // a member's sink had not taken its last buffer
    };
    Counts counts() const;
    // The system's id of the thread that runs the processing callback (for measuring it).
    long dataThreadId() const;
    // A measurement's test sounds (see ProbeCue.h), played from the next cycle on. The caller
    // keeps the script until stopProbe() has returned.
    void playProbe(const ProbeScript* script);
    void stopProbe();

private:
    bool connectInput();
    void watchRegistry();
    void tearDown();
    void looksAfterMembers();
    void publishLatency();
    MemberStream* member(const std::string& uid) const;

    std::uint32_t cycleLength(const pw_time& time);
    static void onInputProcess(void* self);
    static void onGlobal(void* self, std::uint32_t id, std::uint32_t permissions, const char* type,
                         std::uint32_t version, const spa_dict* props);
    static void onGlobalRemove(void* self, std::uint32_t id);
    static void onWatch(void* self, std::uint64_t expirations);

    PipeWireLoop& session;
    std::string nodeName;
    std::string nodeDescription;
    std::vector<std::string> uids;
    std::string group;
    Cycle cycle;
    std::vector<std::unique_ptr<MemberStream>> members;
    pw_stream* input = nullptr;
    spa_hook inputListener{};
    pw_registry* registry = nullptr;
    spa_hook registryListener{};
    std::map<std::uint32_t, std::string> sinkNodes; // PipeWire node id -> node name
    spa_source* watchTimer = nullptr;
    bool wasConnected = true;
    std::optional<spa_latency_info> published; // what players were last told
    std::uint64_t lastTicks = 0;               // the graph's clock at the last cycle, on the data thread
    std::atomic<std::uint64_t> cycles{0};
    std::atomic<std::uint64_t> shortCycles{0};
};

} // namespace orvanta::pipewire

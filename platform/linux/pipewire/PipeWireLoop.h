#pragma once

// One connection to the PipeWire daemon, run on PipeWire's own thread loop. Everything that
// touches PipeWire objects from another thread holds the loop's lock (Lock below); callbacks
// run on the loop's thread with the lock already held.

#include <pipewire/pipewire.h>

#include <atomic>
#include <chrono>
#include <memory>

namespace orvanta::pipewire {

class PipeWireLoop
{
public:
    // A connection, or null when no PipeWire daemon answers.
    static std::unique_ptr<PipeWireLoop> connect();
    ~PipeWireLoop();
    PipeWireLoop(const PipeWireLoop&) = delete;
    PipeWireLoop& operator=(const PipeWireLoop&) = delete;

    pw_thread_loop* threadLoop() const { return loop; }
    pw_context* context() const { return pwContext; }
    pw_core* core() const { return pwCore; }
    // Whether the daemon is still there: false once it has gone away.
    bool connected() const { return !lost; }

    // Waits for the loop to be signalled (or the bound to pass), the lock held.
    void waitSignal(std::chrono::milliseconds bound);
    // Reconnects after the daemon went away; the lock held. False if it still does not answer.
    bool reconnect();

    class Lock
    {
    public:
        explicit Lock(const PipeWireLoop& owner) : loop(owner.loop) { pw_thread_loop_lock(loop); }
        ~Lock() { pw_thread_loop_unlock(loop); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pw_thread_loop* loop;
    };

private:
    PipeWireLoop() = default;
    bool connectCore();
    void dropCore();
    static void onCoreError(void* self, std::uint32_t id, int seq, int res, const char* message);

    pw_thread_loop* loop = nullptr;
    pw_context* pwContext = nullptr;
    pw_core* pwCore = nullptr;
    spa_hook coreListener{};
    std::atomic<bool> lost{false};
};

} // namespace orvanta::pipewire
